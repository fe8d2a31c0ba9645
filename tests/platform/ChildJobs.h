#pragma once

#include "support/Child.h"

#include <string>
#include <vector>

namespace zenka::test {

/// What this test program does when started with "--child NAME ARGUMENT...": a job that gets killed.
int runChildJob(const std::vector<std::string>& words);

/// The same program again, doing a job.
std::vector<std::string> childJob(std::vector<std::string> words);

} // namespace zenka::test
