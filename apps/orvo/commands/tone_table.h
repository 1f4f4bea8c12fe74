// The table of new tones for remapping, from a file, a number of tones or a curve.
#ifndef APPS_ORVO_COMMANDS_TONE_TABLE_H
#define APPS_ORVO_COMMANDS_TONE_TABLE_H

#include <array>
#include <cstdint>
#include <string>

#include "options.h"

namespace client {

using ToneTable = std::array<std::uint32_t, 256>;

// Fills the table from whichever of "table", "posterize" and "curve" is given. Empty on success,
// else what is wrong.
std::string ReadToneTable(const Parameters& parameters, ToneTable& table);

}  // namespace client

#endif  // APPS_ORVO_COMMANDS_TONE_TABLE_H
