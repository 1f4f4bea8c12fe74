// orvo: the toolkit from the command line.
//
//   orvo sharpen --level 7 photo.jpg -o sharp.jpg
#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <variant>

#include <orvo/raii.h>

#include "batch.h"
#include "command_line.h"
#include "messages.h"
#include "progress.h"

namespace {

// What was told on standard output has to arrive; whoever closed the other end of a pipe knows.
int Finished(int status) {
  errno = 0;
  std::cout.flush();
  if (std::cout || errno == EPIPE) return status;
  client::Tell("standard output could not be written");
  return status == client::kAllDone ? client::kSomeFailed : status;
}

int Work(int argc, char** argv) {
  try {
    const auto asked = client::ReadCommandLine(argc, argv);
    if (const auto* status = std::get_if<client::ExitStatus>(&asked)) return *status;
    const orvo::OwnedInstance toolkit;
    if (!toolkit) {
      client::Tell("out of memory");
      return client::kSomeFailed;
    }
    client::CatchInterrupts();
    const client::ExitStatus status = client::Run(*toolkit.get(), std::get<client::Request>(asked));
    constexpr int kEndedBySignal = 128;  // as shells tell it
    return client::Interrupted() ? kEndedBySignal + client::InterruptingSignal() : status;
  } catch (const std::bad_alloc&) {
    client::Tell("out of memory");
    return client::kSomeFailed;
  } catch (const std::exception& fault) {
    client::Tell(fault.what());
    return client::kSomeFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return Finished(Work(argc, argv));
}
