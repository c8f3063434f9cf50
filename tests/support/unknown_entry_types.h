// Another name of call_faults.h, until no test uses it.

#pragma once

#include "support/call_faults.h"
