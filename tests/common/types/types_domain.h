// A few host types registered for reflection: what the registry tests look up.
#pragma once

#include <vector>

#include "vnxml/common/rtti_register.h"

namespace typesdomain {

using namespace vn;

enum TFruit : uint8_t { frApple, frPear, frPlum };
VN_REGISTER_TYPE(TFruit, u"uTypesTest") { b.Values({u"frApple", u"frPear", u"frPlum"}); }

using TFruits = TSet<TFruit>;
VN_REGISTER_TYPE(TFruits, u"uTypesTest") {}

struct TPoint {
  Integer X = 0;
  Integer Y = 0;
};
VN_REGISTER_TYPE(TPoint, u"uTypesTest") { b.Public(u"X", &TPoint::X).Public(u"Y", &TPoint::Y); }

class TBase : public TObject {
  VN_DECLARE_CLASS(TBase, TObject)
 public:
  Integer FSize = 0;
};
VN_REGISTER_TYPE(TBase, u"uTypesTest") { b.Public(u"Size", &TBase::FSize); }

class TDerived : public TBase {
  VN_DECLARE_CLASS(TDerived, TBase)
};
VN_REGISTER_TYPE(TDerived, u"uTypesTest") {}

/// Never registered: its record is made on demand.
class TLeaf : public TDerived {
  VN_DECLARE_CLASS(TLeaf, TDerived)
};

/// Registered under a generic name, as containers of the library are.
class TBaseBox : public TObject {
  VN_DECLARE_CLASS(TBaseBox, TObject)
};
VN_REGISTER_TYPE(TBaseBox, u"uTypesTest") { b.Name(GenericTypeName(u"TBox", {TypeInfoOf<TBase>()}), u"uTypesTest"); }

}  // namespace typesdomain
