// Texts of the strength methods: their names for pick lists, the label of a settings record
// for a result column, and the note that says to what strength a batch was adjusted.
//
// String table: long names 688 + method, short names 704 + method, notes 720 + method, for
// methods 0 to 14. The short names of methods 2 and 14 and the notes are formats: "%d" takes
// the user wavelength, "%s" a formatted number or wavelength text, "%%" gives "%". Notes 721
// and 733 (methods 1 and 13) are in the table but not used: those methods take the wavelength
// forms 722 and 734 of methods 2 and 14.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velquor/strength/strength_settings.h"

namespace velquor {

inline constexpr std::uint32_t kStrengthMethodNameBase = 688;  // "Apparent" .. 702
inline constexpr std::uint32_t kStrengthShortNameBase = 704;   // "Apparent" .. 718
inline constexpr std::uint32_t kStrengthNoteBase = 720;  // "(Apparent Strength adj. ..." .. 734

// Sizes both vectors to 15; entry i holds string 688 + i and the code i, for i = 0 to 14.
void LoadStrengthMethodNames(std::vector<std::string>& names, std::vector<std::uint8_t>& codes);

// A number as the strength texts show it: fixed with 2 decimals (rounded to nearest from the
// exact binary value), the decimal separator of StrengthDecimalSeparator() in place of the
// point, and no minus sign when no digit 1 to 9 occurs ("-0.00" is shown as "0.00"). The
// formatting does not depend on the process's C locale.
std::string FormatStrengthNumber(double value);

// The decimal separator of the strength texts: the one set with SetStrengthDecimalSeparator,
// else the user's (UserDecimalSeparator of velquor/settings/locale_format.h: the decimal point
// of the user's numeric locale, read once per process, else ".").
std::string StrengthDecimalSeparator();
// Makes `separator` the decimal separator of the strength texts for the whole process and
// returns the previous one; an empty text restores the user's locale's separator. Hosts set
// the separator of their own regional settings here.
std::string SetStrengthDecimalSeparator(std::string_view separator);

// The label of `settings` for a result column or option caption: for method 11 its short name
// alone; otherwise the formatted target percent, a blank and the short name, where the short
// names of methods 2 and 14 ("Chromatic @ %d nm", "Base Chromatic @ %d nm") are filled with
// the user wavelength: "100.00 Apparent", "95.00 Chromatic @ 520 nm". A method outside 0..14
// has an empty short name.
std::string GetStrengthLabel(const CStrengthSettings& settings);

// The note that tells how a batch was adjusted. The texts are: from = the formatted
// `fromValue`, to = the formatted target percent, wavelength = `wavelength` as "%d"; all three
// are "n/a" when `fromValue` is the missing value. By method:
//   1, 2:    "(Strength adj. from <from>% to <to>% @ <wavelength> nm)"       (string 722)
//   11:      "(Strength when dL=0: <from>%)"                                 (string 731)
//   13, 14:  "(Base Strength adj. from <from>% to <to>% @ <wavelength> nm)"  (string 734)
//   others:  string 720 + method with from and to, e.g. method 0
//            "(Apparent Strength adj. from <from>% to <to>%)".
// A method outside 0..14 gives the empty text.
std::string GetStrengthAdjustNote(const CStrengthSettings& settings, double fromValue = 100.0,
                                  int wavelength = 500);

}  // namespace velquor
