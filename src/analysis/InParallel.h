#pragma once

#include "ports/WorkQueues.h"

#include <cstddef>
#include <functional>

namespace zenka::analysis {

/// Calls a function for each of `count` indices, on this thread and on those of the shared pool that are
/// free, and comes back when all are done. The function is called from several threads at once.
void inParallel(ports::WorkQueues& queues, std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace zenka::analysis
