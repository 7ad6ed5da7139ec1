// Moved to support/raises.h; kept for tests written against the old place.
#pragma once
#include "support/raises.h"
