#pragma once

// Whether an integration can be undone, and was. The plug-in notices neither, so the disk and the
// de-integration script are looked at. What is wrong becomes a failure of the outcome.

#include <string>

#include "installer/outcome.h"
#include "installer/session.h"

namespace trial {

/// The directory that the de-integration script removes in the last of its three lines; empty where
/// it does not have them.
std::string copy_to_be_undone(installer::Session const& session);

/// Whether both lead to the same place, through links too.
bool is_same_place(std::string const& one, std::string const& other);

/// After an integration that made a copy, with the answer of `copy_to_be_undone` before it.
void check_undo_is_possible(installer::Session const& session, std::string const& earlier_copy,
                            installer::Outcome& outcome);

/// Before a de-integration that is to remove `copy`, the answer of `copy_to_be_undone`.
void check_before_undo(installer::Session const& session, std::string const& copy,
                       installer::Outcome& outcome);

/// After it.
void check_is_removed(std::string const& copy, installer::Outcome& outcome);

} // namespace trial
