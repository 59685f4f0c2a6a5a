// Marks what the shared library exports; everything else stays hidden.
#pragma once

#define ORVANE_API __attribute__((visibility("default")))
