#pragma once

// Whether an integration can be undone, and was: told by the disk and the de-integration script,
// for the plug-in notices neither. What is found is added to the failures of the outcome.

#include "trial/host.h"

namespace trial {

/// The directory that the de-integration script removes in the last of its three lines; empty where
/// it does not have them.
std::string copy_to_be_undone(Session const& session);

/// After an integration that made a copy, with the answer of `copy_to_be_undone` before it.
void check_undo_is_possible(Session const& session, std::string const& earlier_copy,
                            Outcome& outcome);

/// Before a de-integration that is to remove `copy`, the answer of `copy_to_be_undone`.
void check_before_undo(Session const& session, std::string const& copy, Outcome& outcome);

/// After it.
void check_is_removed(std::string const& copy, Outcome& outcome);

} // namespace trial
