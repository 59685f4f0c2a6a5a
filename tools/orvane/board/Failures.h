// Failures of a board in words for the user.
#pragma once

#include "tools/orvane/output/Errors.h"

#include <exception>
#include <orvane/rack.hpp>
#include <string>

namespace OrvaneTool {

// One line: device, operation with its PHY and register, and cause.
std::string textOf(const Orvane::Failure& failure);
// The cause alone.
std::string causeOf(const Orvane::Failure& failure);
// What any exception that ends a command says.
std::string textOf(const std::exception_ptr& problem);

} // namespace OrvaneTool
