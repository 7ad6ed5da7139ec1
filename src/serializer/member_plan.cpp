// The member plans of the walker and the builder, made once per type.
#include "serializer/member_plan.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace vn::detail {

bool SameName(std::u16string_view A, std::u16string_view B) noexcept {
  if (A.size() != B.size()) return false;
  if (std::memcmp(A.data(), B.data(), A.size() * sizeof(char16_t)) == 0) return true;
  for (size_t i = 0; i < A.size(); ++i) {
    char16_t a = A[i], b = B[i];
    if (a == b) continue;
    if (a >= u'a' && a <= u'z') a = static_cast<char16_t>(a - 32);
    if (b >= u'a' && b <= u'z') b = static_cast<char16_t>(b - 32);
    if (a != b) return false;
  }
  return true;
}

namespace {

bool IsTValueType(const TVnTypeInfo* AType) { return AType && AType->Handle() == TypeInfoOf<TValue>(); }

std::unique_ptr<MemberPlan> MakePlan(const TVnTypeInfo* AType) {
  auto plan = std::make_unique<MemberPlan>();
  TRttiType* type = AType->RttiType();
  if (!type) return plan;
  std::vector<std::u16string_view> seen;
  auto firstOfName = [&](std::u16string_view AName) {
    for (std::u16string_view name : seen)
      if (SameName(name, AName)) return false;
    seen.push_back(AName);
    return true;
  };
  SerializerHint* hint = nullptr;
  const std::vector<TRttiProperty*> properties = type->GetProperties();
  const std::vector<TRttiField*> fields = type->GetFields();
  for (TRttiProperty* p : properties) {
    if (!firstOfName(p->Name())) continue;
    if (GetSerializerHint(p, shoDoNotSerialize, hint) || !p->IsReadable()) continue;
    SerializerHint* nameHint = nullptr;
    GetSerializerHint(p, shoName, nameHint);
    if (p->Visibility() == mvPublished) {
      if (nameHint && nameHint->GetValue().empty()) continue;
    } else if (p->Visibility() != mvPublic || !nameHint || nameHint->GetValue().empty()) {
      continue;
    }
    PlannedMember m;
    m.Prop = p;
    m.Name = nameHint ? std::u16string_view(nameHint->GetValue()) : std::u16string_view(p->Name());
    m.Type = TVnTypes::GetTypeInfo(p->PropertyTypeInfo());
    m.Attributes = p->GetAttributes();
    m.IsTValue = IsTValueType(m.Type);
    if (GetSerializerHint(p, shoSerializerHelper, hint)) m.HelperHint = hint;
    plan->Written.push_back(m);
  }
  for (TRttiField* f : fields) {
    if (!firstOfName(f->Name())) continue;
    if (GetSerializerHint(f, shoDoNotSerialize, hint) || f->Visibility() < mvPublic) continue;
    if (GetSerializerHint(f, shoName, hint) && hint->GetValue().empty()) continue;
    PlannedMember m;
    m.Field = f;
    m.Name = f->Name();
    m.Type = TVnTypes::GetTypeInfo(f->FieldTypeInfo());
    m.Attributes = f->GetAttributes();
    m.IsTValue = IsTValueType(m.Type);
    plan->Written.push_back(m);
  }
  // Lookups by name keep the reflection's order, so the first member of a name is found.
  for (TRttiField* f : fields) plan->Fields.push_back({f->Name(), f, nullptr, TVnTypes::GetTypeInfo(f->FieldTypeInfo())});
  if (type->IsInstance()) {
    for (TRttiProperty* p : properties)
      plan->Properties.push_back({p->Name(), nullptr, p, TVnTypes::GetTypeInfo(p->PropertyTypeInfo())});
    for (TRttiProperty* p : properties)
      if (p->Visibility() >= mvPublic && GetSerializerHint(p, shoName, hint))
        plan->HintNamed.push_back({hint->GetValue(), nullptr, p, TVnTypes::GetTypeInfo(p->PropertyTypeInfo())});
  }
  for (std::vector<NamedMember>* list : {&plan->Fields, &plan->Properties, &plan->HintNamed})
    for (size_t i = 0; i < list->size(); ++i)
      for (size_t j = 0; j < i && (*list)[i].FirstOfName; ++j)
        if (SameName((*list)[j].Name, (*list)[i].Name)) (*list)[i].FirstOfName = false;
  for (TRttiProperty* p : properties) {
    if (GetSerializerHint(p, shoNodeType, hint) && SameName(hint->GetValue(), u"NodeValue")) {
      plan->NodeValue = {p->Name(), nullptr, p};
      return plan;
    }
  }
  for (TRttiField* f : fields) {
    if (GetSerializerHint(f, shoNodeType, hint) && SameName(hint->GetValue(), u"NodeValue")) {
      plan->NodeValue = {f->Name(), f, nullptr};
      break;
    }
  }
  return plan;
}

}  // namespace

const MemberPlan& PlanOf(const TVnTypeInfo* AType) {
  // Plans live as long as the process and never change, so each thread keeps the ones it used
  // last without the lock: a read asks for the same few types once per member.
  struct Recent {
    const TVnTypeInfo* Type = nullptr;
    const MemberPlan* Plan = nullptr;
  };
  constexpr size_t kRecent = 16;
  thread_local Recent recent[kRecent];
  Recent& slot = recent[(reinterpret_cast<uintptr_t>(AType) >> 4) % kRecent];
  if (slot.Type == AType && slot.Plan) return *slot.Plan;
  static std::mutex lock;
  static std::unordered_map<const TVnTypeInfo*, std::unique_ptr<MemberPlan>> plans;
  std::lock_guard guard(lock);
  std::unique_ptr<MemberPlan>& plan = plans[AType];
  if (!plan) plan = MakePlan(AType);
  slot = {AType, plan.get()};
  return *plan;
}

}  // namespace vn::detail
