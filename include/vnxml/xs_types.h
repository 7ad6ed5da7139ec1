// xs_types.h: the XS value records (unit uVnXSTypes): nullable values named after the simple
// types of XML Schema, the integer and float ones with the facets of a restriction. A member of
// one of these types is written by the serializers as its bare value (xs_serializer.h).
#pragma once

#include "vnxml/xs_binary.h"
#include "vnxml/xs_integer.h"
#include "vnxml/xs_messages.h"
#include "vnxml/xs_rational.h"
#include "vnxml/xs_simple.h"
