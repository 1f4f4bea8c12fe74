// Everything that an application needs from the toolkit.
#ifndef ORVO_ORVO_H
#define ORVO_ORVO_H

#include <orvo/dib.h>
#include <orvo/dib_block.h>
#include <orvo/file_limits.h>
#include <orvo/instance.h>
#include <orvo/platform.h>
#include <orvo/raii.h>
#include <orvo/records.h>
#include <orvo/result_codes.h>

#endif  // ORVO_ORVO_H
