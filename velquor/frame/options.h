// Library-wide options. The only one is the unit of hue angles at the interface.
#pragma once

namespace velquor {

// Non-zero (the default, and the only setting the library itself uses): every hue angle that
// crosses the interface is in degrees. Zero: hue angles are in radians.
int GetHueInDegrees();
// Changes the hue unit for the whole process. Meant for tests and for hosts that work in
// radians throughout; it is read on every hue conversion.
void SetHueInDegrees(int hueInDegrees);

// Interface hue to radians: h * 0.017453292519944444 when hues are in degrees, else h.
double HueToRadians(double h);
// Radians to interface hue: h * 57.29577951307855 when hues are in degrees, else h.
double HueFromRadians(double h);

}  // namespace velquor
