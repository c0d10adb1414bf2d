// Spellings of the enumerations.
#include <array>

#include "GenApi/EnumClasses.h"

namespace GENAPI_NAMESPACE {
namespace {

using GENICAM_NAMESPACE::gcstring;

template<class E>
struct Spelling {
  E value;
  const char* text;
};

// Each table ends with the text of an unknown value, which FromString does not take.
template<class E>
constexpr Spelling<E> kSpellings[] = {};

template<>
constexpr Spelling<ESign> kSpellings<ESign>[] = {
    {Signed, "Signed"}, {Unsigned, "Unsigned"}, {_UndefinedSign, "_UndefinedSign"}};
template<>
constexpr Spelling<EAccessMode> kSpellings<EAccessMode>[] = {
    {NI, "NI"}, {NA, "NA"}, {WO, "WO"}, {RO, "RO"}, {RW, "RW"}, {_UndefinedAccesMode, "_UndefinedAccessMode"}};
template<>
constexpr Spelling<EVisibility> kSpellings<EVisibility>[] = {{Beginner, "Beginner"},
                                                             {Expert, "Expert"},
                                                             {Guru, "Guru"},
                                                             {Invisible, "Invisible"},
                                                             {_UndefinedVisibility, "_UndefinedVisibility"}};
template<>
constexpr Spelling<ECachingMode> kSpellings<ECachingMode>[] = {{NoCache, "NoCache"},
                                                               {WriteThrough, "WriteThrough"},
                                                               {WriteAround, "WriteAround"},
                                                               {_UndefinedCachingMode, "_UndefinedCachingMode"}};
template<>
constexpr Spelling<ERepresentation> kSpellings<ERepresentation>[] = {
    {Linear, "Linear"},         {Logarithmic, "Logarithmic"},
    {Boolean, "Boolean"},       {PureNumber, "PureNumber"},
    {HexNumber, "HexNumber"},   {IPV4Address, "IPV4Address"},
    {MACAddress, "MACAddress"}, {_UndefinedRepresentation, "_UndefinedRepresentation"}};
template<>
constexpr Spelling<EEndianess> kSpellings<EEndianess>[] = {
    {BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}, {_UndefinedEndian, "_UndefinedEndian"}};
template<>
constexpr Spelling<ENameSpace> kSpellings<ENameSpace>[] = {
    {Custom, "Custom"}, {Standard, "Standard"}, {_UndefinedNameSpace, "_UndefinedNameSpace"}};
template<>
constexpr Spelling<EStandardNameSpace> kSpellings<EStandardNameSpace>[] = {
    {None, "None"}, {GEV, "GEV"}, {IIDC, "IIDC"},
    {CL, "CL"},     {USB, "USB"}, {_UndefinedStandardNameSpace, "_UndefinedStandardNameSpace"}};
template<>
constexpr Spelling<EYesNo> kSpellings<EYesNo>[] = {{No, "No"}, {Yes, "Yes"}, {_UndefinedYesNo, "_UndefinedYesNo"}};
template<>
constexpr Spelling<ESlope> kSpellings<ESlope>[] = {{Increasing, "Increasing"},
                                                   {Decreasing, "Decreasing"},
                                                   {Varying, "Varying"},
                                                   {Automatic, "Automatic"},
                                                   {_UndefinedESlope, "_UndefinedESlope"}};
template<>
constexpr Spelling<EDisplayNotation> kSpellings<EDisplayNotation>[] = {
    {fnAutomatic, "Automatic"},
    {fnFixed, "Fixed"},
    {fnScientific, "Scientific"},
    {_UndefinedEDisplayNotation, "_UndefinedEDisplayNotation"}};
template<>
constexpr Spelling<EInputDirection> kSpellings<EInputDirection>[] = {
    {idFrom, "From"}, {idTo, "To"}, {idNone, "None"}, {static_cast<EInputDirection>(3), "_UndefinedEInputDirection"}};
template<>
constexpr Spelling<EGenApiSchemaVersion> kSpellings<EGenApiSchemaVersion>[] = {
    {v1_0, "v1_0"}, {v1_1, "v1_1"}, {_UndefinedEGenApiSchemaVersion, "_UndefinedEGenApiSchemaVersion"}};

}  // namespace

template<class E>
bool EnumClassT<E>::FromString(const gcstring& ValueStr, E* pValue) {
  const auto& table = kSpellings<E>;
  for (size_t i = 0; i + 1 < std::size(table); ++i) {
    if (ValueStr == table[i].text) {
      *pValue = table[i].value;
      return true;
    }
  }
  return false;
}

template<class E>
gcstring EnumClassT<E>::ToString(E Value) {
  const auto& table = kSpellings<E>;
  for (const Spelling<E>& known : table) {
    if (known.value == Value)
      return known.text;
  }
  return std::end(table)[-1].text;
}

template class EnumClassT<ESign>;
template class EnumClassT<EAccessMode>;
template class EnumClassT<EVisibility>;
template class EnumClassT<ECachingMode>;
template class EnumClassT<ERepresentation>;
template class EnumClassT<EEndianess>;
template class EnumClassT<ENameSpace>;
template class EnumClassT<EStandardNameSpace>;
template class EnumClassT<EYesNo>;
template class EnumClassT<ESlope>;
template class EnumClassT<EDisplayNotation>;
template class EnumClassT<EInputDirection>;
template class EnumClassT<EGenApiSchemaVersion>;

}  // namespace GENAPI_NAMESPACE
