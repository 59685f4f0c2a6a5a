// The Rack interface of Orvane, for C++17: any number of boards, sessions that heal, one kind of error.
#pragma once

#include "ov_sys/names/Named.h"
#include "ov_sys/names/NamedBatch.h"
#include "ov_sys/names/Plan.h"
#include "ov_sys/names/Selection.h"
#include "ov_sys/names/Snapshot.h"
#include "ov_sys/rack/Flight.h"
#include "ov_sys/rack/Rack.h"
