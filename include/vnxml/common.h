// common.h: the platform layer and the common package (unit rVnCommon).
#pragma once

#include "vnxml/common/exception.h"
#include "vnxml/common/guid.h"
#include "vnxml/common/interface.h"
#include "vnxml/common/object.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/types.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/varrec.h"
