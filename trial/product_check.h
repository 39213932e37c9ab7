#pragma once

#include <string>
#include <vector>

#include "installer/session.h"

namespace trial {

/// What can be seen to be wrong before an install: one sentence for each mistake in the session,
/// the product's files and the workbench, with the cause and the remedy. Only looks.
std::vector<std::string> find_mistakes(installer::Session const& session);

/// The first integration that is there already, with what to do, or nothing. Only looks.
std::string find_integration(installer::Session const& session);

/// What another product has in the place of the copy, with what to do, or nothing. Only looks.
std::string find_other_copy(installer::Session const& session);

/// Throws StartError where the product's directory or its sub-directory is not there.
void require_product(installer::Session const& session);

} // namespace trial
