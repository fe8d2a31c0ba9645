#pragma once

#include <functional>
#include <string>

namespace zenka::platform {

/// Receives one sentence for a log. Called on any thread.
using Report = std::function<void(std::string)>;

} // namespace zenka::platform
