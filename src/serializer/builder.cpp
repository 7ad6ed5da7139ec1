// TVnDeserializer: construction, ownership of created objects, the entry points, and the
// choice of what receives the events. Member lookup and values: builder_members.cpp.
#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/serializer_builder.h"

namespace vn {

TVnDeserializer::TVnDeserializer() = default;

TVnDeserializer::~TVnDeserializer() {
  // Children and spares hold no count of their parent, so the levels below are taken down from
  // the top, one at a time, instead of by nested destructors.
  std::vector<IPtr<IVnDeserializer>> below;
  auto detach = [&below](TVnDeserializer& ALevel) {
    ALevel.FChild = nullptr;
    ALevel.FSpare = nullptr;
    if (ALevel.FChildRef) below.push_back(std::move(ALevel.FChildRef));
    if (ALevel.FSpareRef) below.push_back(std::move(ALevel.FSpareRef));
  };
  detach(*this);
  while (!below.empty()) {
    IPtr<IVnDeserializer> next = std::move(below.back());
    below.pop_back();
    detach(*static_cast<TVnDeserializer*>(VnImplementor(next.Get())));
  }
  if (FOwnList) delete FCreatedObjs;
}

void TVnDeserializer::Create(const TValue& AValue) {
  TVnCustomSerializer::Create(AValue);
  FMemberValue = AValue;
}

void TVnDeserializer::Create(void* AInstance, const TTypeInfo* AType) {
  TVnCustomSerializer::Create(AInstance, AType);
  FIsArray = AType && (AType->Kind == tkArray || AType->Kind == tkDynArray);
  FIHelper = AType && AType->Kind == tkClass && AInstance
                 ? dynamic_cast<IVnDeserializerHelper*>(static_cast<TObject*>(AInstance))
                 : nullptr;
}

void TVnDeserializer::SetParent(TVnCustomSerializer* AParent) {
  TVnCustomSerializer::SetParent(AParent);
  FParentDeserializer = CastObject<TVnDeserializer>(AParent);
  if (FParentDeserializer) FStream = FParentDeserializer->FStream;
}

TVnDeserializer* TVnDeserializer::Root() {
  TVnDeserializer* root = this;
  while (root->FParentDeserializer) root = root->FParentDeserializer;
  return root;
}

void TVnDeserializer::SetCreatedObjects(TObjectList* AList) {
  TVnDeserializer* root = Root();
  if (root != this) {
    root->SetCreatedObjects(AList);
    return;
  }
  if (AList && AList == FCreatedObjs) return;
  if (FOwnList) delete FCreatedObjs;
  FOwnList = !AList;
  FCreatedObjs = AList ? AList : new TVnDeserializerObjectList(this, false);
}

void TVnDeserializer::ReleaseChild() {
  TVnDeserializer* child = FChild;
  FChild = nullptr;
  if (!FChildRef) return;
  // Reset now, not at its reuse: what the ended child holds (helpers, values) goes when the
  // child would have gone.
  if (!FSpareRef && child && child->GetRefCount() == 1 && child->ResetForReuse()) {
    FSpare = child;
    FSpareRef = std::move(FChildRef);
  }
  FChildRef = nullptr;
}

bool TVnDeserializer::ResetForReuse() { return false; }

void TVnDeserializer::ResetBuilderState() {
  ReleaseChild();
  FParent = nullptr;
  FInstancePtr = nullptr;
  FInstanceTypeInfo = nullptr;
  FStream = nullptr;
  FParams->Clear();
  FName = u"root";
  FValue = TValue();
  if (FOwnList) delete FCreatedObjs;
  FCreatedObjs = nullptr;
  FOwnList = false;
  FArrIdx = -1;
  FIHelper = nullptr;
  FCHelper.reset();
  FMemberField = nullptr;
  FMemberProp = nullptr;
  FMemberTypeInfo = nullptr;
  FMemberValue = TValue();
  FMemberName.clear();
  FParentDeserializer = nullptr;
  FCreated.clear();
  FLinks.clear();
  FCreatedAtStart = 0;
  FNextField = 0;
  FDepth = 0;
  FStarted = false;
  FIsArray = false;
}

// ---- created objects ----

void TVnDeserializer::RecordCreated(TObject* AObject) {
  TVnDeserializer* root = Root();
  root->FCreated.push_back(AObject);
  if (!root->FCreatedObjs) root->SetCreatedObjects(nullptr);
  root->FCreatedObjs->Add(AObject);
}

void TVnDeserializer::RecordLink(void* AInstance, TRttiField* AField, TRttiProperty* AProp) {
  if (AInstance && (AField || AProp)) Root()->FLinks.push_back(Link{AInstance, AField, AProp});
}

size_t TVnDeserializer::CreatedCount() { return Root()->FCreated.size(); }

void TVnDeserializer::FreeIfCreated(TValue& AValue) noexcept {
  TObject* const object = AValue.IsObject() ? AValue.AsObject() : nullptr;
  if (!object) return;
  // The value being replaced is most often the one made last: looked for from the end.
  TVnDeserializer* root = Root();
  const auto it = std::find(root->FCreated.rbegin(), root->FCreated.rend(), object);
  if (it == root->FCreated.rend()) return;
  root->FCreated.erase(std::next(it).base());
  if (root->FCreatedObjs) root->FCreatedObjs->Extract(object);
  delete object;
  AValue = TValue();
}

void TVnDeserializer::RollBack() noexcept {
  // Unlink first, newest first, while every object is still alive; then free.
  for (auto it = FLinks.rbegin(); it != FLinks.rend(); ++it) {
    try {
      if (it->Field)
        it->Field->SetValue(it->Instance, TValue::Make(nullptr, it->Field->FieldTypeInfo()));
      else if (it->Prop->IsWritable())
        it->Prop->SetValue(it->Instance, TValue::Make(nullptr, it->Prop->PropertyTypeInfo()));
    } catch (...) {
    }
  }
  FLinks.clear();
  for (auto it = FCreated.rbegin(); it != FCreated.rend(); ++it) {
    if (FCreatedObjs) {
      FCreatedObjs->Extract(*it);
    }
    delete *it;
  }
  FCreated.clear();
}

TObject* TVnDeserializer::CreateInstance(const TVnTypeInfo*& AType) {
  TClass cls = AType ? AType->Handle()->ClassType : nullptr;
  if (!cls && AType) cls = GetClass(AType->Name());
  if (!cls) throw Exception(cVnNoClassOfType, {AType ? AType->Name() : UnicodeString(u"nil")});
  TComponent* owner = nullptr;
  const bool component = ClassInheritsFrom(cls, TComponent::StaticClass());
  if (component) {
    TObject* ownerParam = GetObjParam(u"Owner");
    owner = CastObject<TComponent>(ownerParam);
    if (ownerParam && !owner) throw Exception(cVnOwnerNotAComponent);
  }
  std::unique_ptr<TObject> object(vn::CreateInstance(cls));
  if (auto* counted = CastObject<TVnObject>(object.get())) counted->SetAutoDestroy(false);
  if (owner) owner->InsertComponent(static_cast<TComponent*>(object.get()));
  if (TClass control = GetClass(u"TControl"); control && object->InheritsFrom(control)) {
    if (TObject* parent = GetObjParam(u"Parent")) {
      if (TRttiProperty* property = TRttiContext::GetType(cls)->GetProperty(u"Parent"))
        property->SetValue(object.get(), TValue::FromObject(parent));
    }
  }
  TObject* result = object.release();
  RecordCreated(result);
  return result;
}

// ---- entry points ----

void TVnDeserializer::Deserialize(const TVnSerializedData& AData) {
  // Read where it stands: the text outlives the read, and the readers are told it is UTF-8.
  TVnMemoryStream stream(AData.data(), static_cast<Int64>(AData.size()));
  Deserialize(stream);
}

void TVnDeserializer::Deserialize(TStream& AStream) {
  VnAssert(FParentDeserializer == nullptr, cVnDeserializeNotOnRoot);
  if (!FCreatedObjs) SetCreatedObjects(nullptr);
  FStream = &AStream;
  try {
    TVnDeserializer* target = CheckInstance();
    auto* object = FInstanceTypeInfo && FInstanceTypeInfo->GetKind() == tkClass
                       ? static_cast<TObject*>(FInstancePtr)
                       : nullptr;
    auto* selfReader = object ? dynamic_cast<IVnDeserializable*>(object) : nullptr;
    if (selfReader && selfReader->CanDeserialize(Format())) {
      std::string text;
      char block[4096];
      for (Int64 n; (n = AStream.Read(block, sizeof block)) > 0;) text.append(block, static_cast<size_t>(n));
      selfReader->Deserialize(Format(), text, FParams.get());
    } else {
      if (FInstancePtr) target->DeserializeStartType();
      target->DoDeserialize();
      if (FInstancePtr) target->DeserializeEndType();
      // A root array was read into a copy; it reaches the caller's array now.
      if (target != this && FMemberValue.TypeInfo() && FInstanceTypeInfo &&
          (FInstanceTypeInfo->Kind() == vtkDynArray || FInstanceTypeInfo->Kind() == vtkStaticArray))
        FMemberValue.ExtractRawData(FInstancePtr);
    }
    ReleaseChild();
  } catch (...) {
    // Levels that started and did not end are told they ended, so host locks are left.
    for (TVnDeserializer* d = this; d; d = d->FChild)
      if (d->FStarted && d->FIHelper) {
        try {
          d->FIHelper->AfterDeserialize(d);
        } catch (...) {
        }
      }
    ReleaseChild();
    RollBack();
    throw;
  }
  // The read succeeded: what it created belongs to the members it was stored in.
  FLinks.clear();
  FCreated.clear();
  if (FOwnList) FCreatedObjs->Clear();
}

TVnDeserializer* TVnDeserializer::CheckInstance() {
  if (FInstancePtr && !FInstanceTypeInfo) throw Exception(cVnNoTypeInfo);
  if (FInstancePtr) {
    const TVnTypeKind kind = FInstanceTypeInfo->Kind();
    if (kind != vtkDynArray && kind != vtkStaticArray) return this;
    // A root array is read as the member of a sub-root, into a copy that goes back at the end.
    if (!FMemberValue.TypeInfo()) FMemberValue = TValue::Make(FInstancePtr, FInstanceTypeInfo->Handle());
    if (FMemberValue.TypeInfo() != FInstanceTypeInfo->Handle()) {
      if (!FInstanceTypeInfo->Handle()) throw Exception(cVnInstanceTypeInfoNil);
      const TVnTypeInfo* memberType = TVnTypes::GetTypeInfo(FMemberValue.TypeInfo());
      if (memberType->QualifiedName() != FInstanceTypeInfo->QualifiedName())
        throw Exception(cVnMemberValueTypeDiffers, {memberType->QualifiedName(), FInstanceTypeInfo->QualifiedName()});
    }
    FMemberTypeInfo = FInstanceTypeInfo;
    IPtr<IVnDeserializer> sub = VnCreateDeserializerEx(Format(), FMemberValue.GetReferenceToRawData(), FInstanceTypeInfo);
    auto* subRoot = static_cast<TVnDeserializer*>(VnImplementor(sub.Get()));
    subRoot->FName = u"subroot";
    subRoot->SetParent(this);
    FChildRef = std::move(sub);
    FChild = subRoot;
    return subRoot;
  }
  if (FInstanceTypeInfo) {
    FInstancePtr = CreateInstance(FInstanceTypeInfo);
    if (FInstanceTypeInfo->GetKind() == tkClass)
      FIHelper = dynamic_cast<IVnDeserializerHelper*>(static_cast<TObject*>(FInstancePtr));
    return this;
  }
  // Neither instance nor type: the text names the class.
  const Int64 position = FStream->GetPosition();
  UnicodeString name;
  {
    TVnTextParser parser(FStream, false, cVnCodePageUTF8);
    ReadClassName(parser, name);
  }
  if (name.empty()) throw Exception(cVnNoClassNameInStream);
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(name, tntSchemaName, true, mtkUnknown);
  if (!type || type->GetKind() != tkClass) throw Exception(cVnNoClassOfType, {name});
  FStream->SetPosition(position);
  FInstanceTypeInfo = type;
  FInstancePtr = CreateInstance(FInstanceTypeInfo);
  IPtr<IVnDeserializer> sub = VnCreateDeserializerEx(Format(), FInstancePtr, FInstanceTypeInfo);
  auto* subRoot = static_cast<TVnDeserializer*>(VnImplementor(sub.Get()));
  subRoot->FName = u"subroot";
  subRoot->SetParent(this);
  FChildRef = std::move(sub);
  FChild = subRoot;
  return subRoot;
}

bool TVnDeserializer::ReadClassName(UnicodeString& AClassName) {
  AClassName.clear();
  return false;
}

}  // namespace vn
