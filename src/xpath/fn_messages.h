// fn_messages.h: the fixed texts and error codes of the path language's function library.
// Callers and tests compare against these constants; they are part of the contract, spelling
// included. %s is filled by Format.
#pragma once

namespace vn::detail {

// ---- registries ----
inline constexpr char16_t cFnUnsupportedFunction[] = u"The filter contains an unsupported function (%s)!";
inline constexpr char16_t cFnUnsupportedCollation[] = u"The collation \"%s\" is not supported!";

// ---- error codes ----
inline constexpr char16_t cFnCodeNoContext[] = u"XPDY0002";
inline constexpr char16_t cFnCodeType[] = u"XPTY0004";
inline constexpr char16_t cFnCodeMapOrArray[] = u"FOTY0014";
inline constexpr char16_t cFnCodeUserError[] = u"FOER0000";
inline constexpr char16_t cFnCodeInvalidArgument[] = u"FORG0006";
inline constexpr char16_t cFnCodeDifferentZones[] = u"FORG0008";

// ---- node arguments (%s is the signature, as "fn:node-name(node)") ----
inline constexpr char16_t cFnNodeMayNotBeNil[] = u"The node parameter of function \"%s\" may not be nil!";
inline constexpr char16_t cFnNodeMustBeSingle[] = u"The node parameter of function \"%s\" must be a single node!";
inline constexpr char16_t cFnNodeMustBeNode[] = u"The node parameter of function \"%s\" must be a node!";
inline constexpr char16_t cFnArgMustBeNode[] = u"The arg parameter of function \"%s\" must be a node!";

// ---- node functions ----
inline constexpr char16_t cFnNodeNameArity[] = u"The \"fn:node-name(node)\" function may only have 1 parameter!";
inline constexpr char16_t cFnNilledArity[] = u"The \"fn:nilled(node)\" function may only have 1 parameter!";
inline constexpr char16_t cFnStringArity[] =
    u"The \"fn:string(arg)\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnStringNoSequence[] =
    u"The arg parameter of function \"fn:string(arg)\" may not be a sequence!";
inline constexpr char16_t cFnStringNoArray[] =
    u"The arg parameter of function \"fn:string(arg)\" may not be a map or array!";
inline constexpr char16_t cFnDataArity[] =
    u"The \"fn:data(arg)\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnBaseUriArity[] =
    u"The \"fn:base-uri(arg)\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnDocumentUriArity[] =
    u"The \"fn:document-uri(arg)\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnErrorArity[] = u"The \"fn:error()\" function has a maximum of 3 parameters!";
inline constexpr char16_t cFnErrorDefault[] = u"An exception was raised";
inline constexpr char16_t cFnTraceArity[] = u"The \"fn:trace(value, label)\" function must contain 2 parameters!";

// ---- string functions ----
inline constexpr char16_t cFnCodepointsToStringArity[] =
    u"The \"fn:codepoints-to-string((int,int,...))\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnCodepointsToStringList[] =
    u"The \"fn:codepoints-to-string((int,int,...))\" requires a list of integers!";
inline constexpr char16_t cFnStringToCodepointsArity[] =
    u"The \"fn:string-to-codepoints(string)\" function must contain 1 parameter!";
inline constexpr char16_t cFnCompareTooFew[] =
    u"The \"fn:compare(comp1, comp2, collation*)\" function must contain at least parameters!";
inline constexpr char16_t cFnCompareTooMany[] =
    u"The \"fn:compare(comp1, comp2, collation*)\" function has a maximum of 3 paramaters!";
inline constexpr char16_t cFnCodepointEqualArity[] =
    u"The \"fn:codepoint-equal(comp1, comp2)\" function must contain 2 parameters!";
inline constexpr char16_t cFnStringJoinTooFew[] =
    u"The \"fn:string-join((string,string,...),sep*)\" function must contain at least 1 parameter!";
inline constexpr char16_t cFnStringJoinTooMany[] =
    u"The \"fn:string-join((string,string,...),sep*)\" function may not contain more than 2 parameters!";
inline constexpr char16_t cFnSubstringArity[] =
    u"The \"fn:substring(string,start,len)\" function must contain 3 or less parameters!";
inline constexpr char16_t cFnStringLengthArity[] = u"Too many parameters specified for \"fn:string-length(string)\"!";
inline constexpr char16_t cFnNormalizeSpaceArity[] =
    u"Too many parameters specified for \"fn:normalize-space(string)\"!";
inline constexpr char16_t cFnNormalizeUnicodeArity[] =
    u"Too many parameters specified for \"fn:normalize-unicode(string, normalizationForm)\"!";
inline constexpr char16_t cFnNormalizeUnicodeForm[] =
    u"An unsupported normalizationForm was specified for \"fn:normalize-unicode(string, normalizationForm)\"!";
inline constexpr char16_t cFnSimplifyArity[] = u"The \"fn:simplify(string)\" function must have a single parameter!";
inline constexpr char16_t cFnUpperCaseArity[] =
    u"The \"fn:upper-case(string)\" function must have a single parameter!";
inline constexpr char16_t cFnLowerCaseArity[] =
    u"The \"fn:lower-case(string)\" function must have a single parameter!";
inline constexpr char16_t cFnTranslateArity[] =
    u"The \"fn:translate(string1,string2,string3)\" function must have 3 parameters!";
inline constexpr char16_t cFnContainsArity[] = u"The \"fn:contains(string1,string2)\" function must have 2 parameters!";
inline constexpr char16_t cFnStartsWithArity[] =
    u"The \"fn:starts-with(string1,string2)\" function must have 2 parameters!";
inline constexpr char16_t cFnEndsWithArity[] = u"The \"fn:ends-with(string1,string2)\" function must have 2 parameters!";
inline constexpr char16_t cFnSubstringBeforeArity[] =
    u"The \"fn:substring-before(string1,string2)\" function must have 2 parameters!";
// No text of its own was ever given; it follows its twin's.
inline constexpr char16_t cFnSubstringAfterArity[] =
    u"The \"fn:substring-after(string1,string2)\" function must have 2 parameters!";

// ---- regular expressions ----
inline constexpr char16_t cFnMatchesArity[] = u"Invalid parameter for \"fn:matches(string,pattern,flags*)\"!";
inline constexpr char16_t cFnReplaceArity[] = u"Invalid parameter for \"fn:replace(input,pattern,replacement,flags*)\"!";
inline constexpr char16_t cFnTokenizeArity[] = u"Invalid parameter for \"fn:tokenize()\"!";

// ---- numbers and booleans ----
inline constexpr char16_t cFnAbsArity[] = u"The \"fn:abs(num)\" function must contain 1 parameter!";
inline constexpr char16_t cFnCeilingArity[] = u"The \"fn:ceiling(num)\" function must contain 1 parameter!";
inline constexpr char16_t cFnFloorArity[] = u"The \"fn:floor(num)\" function must contain 1 parameter!";
inline constexpr char16_t cFnRoundArity[] = u"The \"fn:round(num)\" function must contain 1 parameter!";
inline constexpr char16_t cFnHalfToEvenArity[] = u"The \"fn:half-to-even(num)\" function must contain 1 parameter!";
inline constexpr char16_t cFnNumberArity[] =
    u"The \"fn:number(arg)\" function may contain 0 or 1 parameter, but not more!";
inline constexpr char16_t cFnBooleanArity[] = u"The \"fn:boolean(arg)\" function must have 1 parameter!";
inline constexpr char16_t cFnBooleanInvalid[] = u"An invalid parameter was passed to fn:boolean(arg)";

// ---- durations and dates (%s is the function's name, as "years-from-duration") ----
inline constexpr char16_t cFnDurationArity[] = u"The \"fn:%s(arg)\" function must have 1 parameter!";
inline constexpr char16_t cFnDurationInvalid[] = u"An invalid parameter was passed to fn:%s(arg)";
/// %s: the name, then the argument ("dateTime", "date" or "time").
inline constexpr char16_t cFnDatePartArity[] = u"The \"fn:%s(%s)\" function must have 1 parameter!";
inline constexpr char16_t cFnDateTimeArity[] = u"The \"fn:dateTime(date, time)\" function must have 2 parameters!";
inline constexpr char16_t cFnDateTimeZones[] = u"An invalid parameter was passed to fn:dateTime(arg)";
inline constexpr char16_t cFnAdjustDateTimeArity[] =
    u"The \"fn:adjust-dateTime-to-timezone(dt,timezone)\" function may not have more than 2 parameters!";

}  // namespace vn::detail
