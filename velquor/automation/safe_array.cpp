#include "velquor/automation/safe_array.h"

#include <utility>

namespace velquor::ole {
namespace {

AutomationFaultHook& FaultHook() {
  static AutomationFaultHook hook;
  return hook;
}

}  // namespace

void SetAutomationFaultHook(AutomationFaultHook hook) {
  FaultHook() = std::move(hook);
}

HRESULT ConsultAutomationFaultHook(AutomationCall call, const SAFEARRAY* psa, LONG index) {
  const AutomationFaultHook& hook = FaultHook();
  return hook ? hook(call, psa, index) : S_OK;
}

}  // namespace velquor::ole
