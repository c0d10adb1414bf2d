// Features, registers, memory and callbacks.
#include "features/enumerations.h"
#include "features/feature_parameter.h"
#include "features/feature_text.h"
#include "features/feature_tree.h"
#include "features/invalidation.h"
#include "features/memory.h"
#include "features/typed_access.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;

oviErr OVI_CALL oviGetFeatureInt(uint64_t handle, const char* name, int64_t* value, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureInt", [&] { return OVI::oviGetFeatureInt(handle, name, value, selector); });
}

oviErr OVI_CALL oviGetFeatureFloat(uint64_t handle, const char* name, double* value, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureFloat",
                         [&] { return OVI::oviGetFeatureFloat(handle, name, value, selector); });
}

oviErr OVI_CALL oviGetFeatureBool(uint64_t handle, const char* name, bool* value, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureBool",
                         [&] { return OVI::oviGetFeatureBool(handle, name, value, selector); });
}

oviErr OVI_CALL oviGetFeatureString(uint64_t handle, const char* name, char* buffer, size_t* size, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureString",
                         [&] { return OVI::oviGetFeatureString(handle, name, buffer, size, selector); });
}

oviErr OVI_CALL oviSetFeatureInt(uint64_t handle, const char* name, int64_t value, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureInt", [&] { return OVI::oviSetFeatureInt(handle, name, value, selector); });
}

oviErr OVI_CALL oviSetFeatureFloat(uint64_t handle, const char* name, double value, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureFloat",
                         [&] { return OVI::oviSetFeatureFloat(handle, name, value, selector); });
}

oviErr OVI_CALL oviSetFeatureBool(uint64_t handle, const char* name, bool value, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureBool",
                         [&] { return OVI::oviSetFeatureBool(handle, name, value, selector); });
}

oviErr OVI_CALL oviSetFeatureString(uint64_t handle, const char* name, const char* value, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureString",
                         [&] { return OVI::oviSetFeatureString(handle, name, value, selector); });
}

oviErr OVI_CALL oviSetFeatureEnum(uint64_t handle, const char* name, const char* entryName, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureEnum",
                         [&] { return OVI::oviSetFeatureEnum(handle, name, entryName, selector); });
}

oviErr OVI_CALL oviGetFeatureEnum(uint64_t handle, const char* name, oviFeatureParameter* entry, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureEnum",
                         [&] { return OVI::oviGetFeatureEnum(handle, name, entry, selector); });
}

oviErr OVI_CALL oviExecuteCommand(uint64_t handle, const char* name, uint32_t selector) {
  return whenInitialized("OVI::oviExecuteCommand", [&] { return OVI::oviExecuteCommand(handle, name, selector); });
}

oviErr OVI_CALL oviIsCommandActive(uint64_t handle, const char* name, bool* active, uint32_t selector) {
  return whenInitialized("OVI::oviIsCommandActive",
                         [&] { return OVI::oviIsCommandActive(handle, name, active, selector); });
}

oviErr OVI_CALL oviGetFeatureReg(uint64_t handle, const char* name, uint8_t* buffer, int64_t* length,
                                 uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureReg",
                         [&] { return OVI::oviGetFeatureReg(handle, name, buffer, length, selector); });
}

oviErr OVI_CALL oviSetFeatureReg(uint64_t handle, const char* name, const uint8_t* buffer, int64_t length,
                                 uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureReg",
                         [&] { return OVI::oviSetFeatureReg(handle, name, buffer, length, selector); });
}

oviErr OVI_CALL oviGetFeatureParameter(uint64_t handle, const char* name, oviFeatureParameter* record,
                                       uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureParameter",
                         [&] { return OVI::oviGetFeatureParameter(handle, name, record, selector); });
}

oviErr OVI_CALL oviGetFeatureAccessMode(uint64_t handle, const char* name, uint32_t* accessMode, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureAccessMode",
                         [&] { return OVI::oviGetFeatureAccessMode(handle, name, accessMode, selector); });
}

oviErr OVI_CALL oviGetFeatureEnumEntryCount(uint64_t handle, const char* name, uint32_t* count, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureEnumEntryCount",
                         [&] { return OVI::oviGetFeatureEnumEntryCount(handle, name, count, selector); });
}

oviErr OVI_CALL oviGetFeatureEnumEntryByIndex(uint64_t handle, const char* name, int32_t index,
                                              oviFeatureParameter* record, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureEnumEntryByIndex",
                         [&] { return OVI::oviGetFeatureEnumEntryByIndex(handle, name, index, record, selector); });
}

oviErr OVI_CALL oviGetFeatureEnumEntryByName(uint64_t handle, const char* name, const char* entryName,
                                             oviFeatureParameter* record, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureEnumEntryByName",
                         [&] { return OVI::oviGetFeatureEnumEntryByName(handle, name, entryName, record, selector); });
}

oviErr OVI_CALL oviGetFeatureAllEnums(uint64_t handle, const char* name, char* text, uint32_t useDisplayNames) {
  return whenInitialized("OVI::oviGetFeatureAllEnums",
                         [&] { return OVI::oviGetFeatureAllEnums(handle, name, text, useDisplayNames); });
}

oviErr OVI_CALL oviIterateFeatureTree(uint64_t handle, const char* parentName, uint32_t index, char* childName,
                                      size_t childNameSize, uint32_t* childType, uint32_t selector) {
  return whenInitialized("OVI::oviIterateFeatureTree", [&] {
    return OVI::oviIterateFeatureTree(handle, parentName, index, childName, childNameSize, childType, selector);
  });
}

oviErr OVI_CALL oviGetFeatureList(uint64_t handle, FEATURE_PARAM_LIST_STRUCT* list, int includeInvisible) {
  return whenInitialized("OVI::oviGetFeatureList",
                         [&] { return OVI::oviGetFeatureList(handle, list, includeInvisible); });
}

oviErr OVI_CALL oviGetFeature(uint64_t handle, const char* name, char* text) {
  return whenInitialized("OVI::oviGetFeature", [&] { return OVI::oviGetFeature(handle, name, text); });
}

oviErr OVI_CALL oviSetFeature(uint64_t handle, const char* name, const char* text) {
  return whenInitialized("OVI::oviSetFeature", [&] { return OVI::oviSetFeature(handle, name, text); });
}

oviErr OVI_CALL oviGetFeatureOnModule(uint64_t handle, const char* name, char* text, uint32_t selector) {
  return whenInitialized("OVI::oviGetFeatureOnModule",
                         [&] { return OVI::oviGetFeatureOnModule(handle, name, text, selector); });
}

oviErr OVI_CALL oviSetFeatureOnModule(uint64_t handle, const char* name, const char* text, uint32_t selector) {
  return whenInitialized("OVI::oviSetFeatureOnModule",
                         [&] { return OVI::oviSetFeatureOnModule(handle, name, text, selector); });
}

oviErr OVI_CALL oviReadMemory(uint64_t handle, uint64_t address, uint8_t* buffer, uint64_t length) {
  return whenInitialized("OVI::oviReadMemory", [&] { return OVI::oviReadMemory(handle, address, buffer, length); });
}

oviErr OVI_CALL oviWriteMemory(uint64_t handle, uint64_t address, const uint8_t* buffer, uint64_t length) {
  return whenInitialized("OVI::oviWriteMemory", [&] { return OVI::oviWriteMemory(handle, address, buffer, length); });
}

oviErr OVI_CALL oviGetRegisterValue(uint64_t handle, const char* address, char* value, uint32_t direct) {
  return whenInitialized("OVI::oviGetRegisterValue",
                         [&] { return OVI::oviGetRegisterValue(handle, address, value, direct); });
}

oviErr OVI_CALL oviSetRegisterValue(uint64_t handle, const char* address, const char* value, uint32_t direct) {
  return whenInitialized("OVI::oviSetRegisterValue",
                         [&] { return OVI::oviSetRegisterValue(handle, address, value, direct); });
}

oviErr OVI_CALL oviIsModuleLittleEndian(uint64_t handle, int32_t selector, bool* littleEndian) {
  return whenInitialized("OVI::oviIsModuleLittleEndian",
                         [&] { return OVI::oviIsModuleLittleEndian(handle, selector, littleEndian); });
}

oviErr OVI_CALL oviRegisterInvalidateCB(uint64_t handle, const char* name, void* context,
                                        oviInvalidateCallback callback, uint32_t selector) {
  return whenInitialized("OVI::oviRegisterInvalidateCB",
                         [&] { return OVI::oviRegisterInvalidateCB(handle, name, context, callback, selector); });
}

oviErr OVI_CALL oviUnRegisterInvalidateCB(uint64_t handle, const char* name, uint32_t selector) {
  return whenInitialized("OVI::oviUnRegisterInvalidateCB",
                         [&] { return OVI::oviUnRegisterInvalidateCB(handle, name, selector); });
}
