// vnxml.h: the whole public surface of the library.
#pragma once

#include "vnxml/common.h"
