// The words that take the place of a value in text fields, reports and traces.
#pragma once

inline constexpr char WORD_NONE[] = "NONE";                  // no file, no image, no version
inline constexpr char WORD_NOT_AVAILABLE[] = "N/A";          // the utility gives no value
inline constexpr char WORD_INVALID_FILE[] = "INVALID_FILE";  // a file name of fwmatrix.txt that is too long
inline constexpr char WORD_NO_VERSION[] = "0.0.0.0";         // a firmware version that is not available
