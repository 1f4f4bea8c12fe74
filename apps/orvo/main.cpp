// orvo: the toolkit from the command line.
//
//   orvo sharpen --level 7 photo.jpg -o sharp.jpg
#include <exception>
#include <variant>

#include <orvo/raii.h>

#include "batch.h"
#include "command_line.h"
#include "messages.h"
#include "progress.h"

int main(int argc, char** argv) {
  try {
    const auto asked = client::ReadCommandLine(argc, argv);
    if (const auto* status = std::get_if<client::ExitStatus>(&asked)) return *status;
    const orvo::OwnedInstance toolkit;
    if (!toolkit) {
      client::Tell("out of memory");
      return client::kSomeFailed;
    }
    client::CatchInterrupts();
    return client::Run(*toolkit.get(), std::get<client::Request>(asked));
  } catch (const std::exception& fault) {
    client::Tell(fault.what());
    return client::kSomeFailed;
  }
}
