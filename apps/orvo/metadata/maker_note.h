// The camera maker's own notes among the tags.
#ifndef APPS_ORVO_METADATA_MAKER_NOTE_H
#define APPS_ORVO_METADATA_MAKER_NOTE_H

#include "bytes.h"

namespace client {

// Some makers' notes are directories that tell positions from the start of the file: where the note
// moves, these move with it. `from` and `to` are the note's old and new place. Any other note
// stays.
void MoveMakerNote(Bytes& note, std::uint64_t from, std::uint64_t to);

}  // namespace client

#endif  // APPS_ORVO_METADATA_MAKER_NOTE_H
