// How the result of a command becomes its file.
#ifndef APPS_ORVO_SAVING_H
#define APPS_ORVO_SAVING_H

#include <functional>
#include <string>

#include "operations.h"

namespace client {

// For commands that take the first page alone: says that there are others.
int MindOtherPages(Job& job);

// Whether source and target are files of one kind.
bool IsSameKind(const Job& job);

// Whether the target may be the source's own bytes if the picture does not change: it is a file of
// the same kind, and no option asks for writing.
bool MayStayAsItIs(const Job& job);

// Leaves the source as it is, or copies it byte for byte to another name, and says so.
int KeepAsItIs(Job& job);

// Makes the target of what `write` writes at the path that it is given; a failure leaves what stood
// there.
int WriteTarget(Job& job, const std::function<int(const std::string& path)>& write);

// Lays a picture with opacity on the background, and says so: for results that cannot hold it.
// Refused in place unless the user has named a background.
int LayOnBackground(Job& job);

// Says that samples of more than 8 bits are rounded; refused in place unless the user allows it.
int MindSampleBits(Job& job);

// Says how many further pictures, frames or layers of the source do not come along; refused in
// place unless the user allows it.
int MindFurtherPictures(Job& job);

// Saves the picture as the target.
int SavePicture(Job& job);

}  // namespace client

#endif  // APPS_ORVO_SAVING_H
