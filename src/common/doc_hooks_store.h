// The store behind a pair of document hooks (make a document from text, read a value by path):
// two function pointers, filled by the owning unit's registration before the first Set or Get, so
// that a host's own Set replaces the unit's hook instead of being replaced by it.
#pragma once

namespace vn::detail {

template <class CreateFunc, class GetValueFunc, void (*Register)()>
class DocHooksStore {
 public:
  static void SetCreate(CreateFunc AFunc) {
    EnsureRegistered();
    Storage().Create = AFunc;
  }
  static void SetGetValue(GetValueFunc AFunc) {
    EnsureRegistered();
    Storage().GetValue = AFunc;
  }
  static CreateFunc GetCreate() {
    EnsureRegistered();
    return Storage().Create;
  }
  static GetValueFunc GetGetValue() {
    EnsureRegistered();
    return Storage().GetValue;
  }

 private:
  struct Hooks {
    CreateFunc Create = nullptr;
    GetValueFunc GetValue = nullptr;
  };
  static Hooks& Storage() {
    static Hooks hooks;
    return hooks;
  }
  // The flag is set before the registration runs: the registration calls the setters.
  static void EnsureRegistered() {
    static bool done = false;
    if (done) return;
    done = true;
    Register();
  }
};

}  // namespace vn::detail
