#include "outcomes.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "platform/fault_injection.h"

namespace stress {
namespace {

using Outcomes = std::map<std::string, std::set<std::string>>;

Fault planned;
int plannedCall = 0;
int fallenOn = 0;
int faults = 0, wrongs = 0;
Outcomes met;

Outcomes Read(const char* path) {
  Outcomes read;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string operation;
    if (!(words >> operation) || operation == "#") continue;
    for (std::string outcome; words >> outcome;) read[operation].insert(outcome);
  }
  return read;
}

}  // namespace

void Plan(Fault fault, int n) {
  planned = fault;
  plannedCall = n;
}

int FallenOn() {
  return fallenOn;
}

int UnderFault(const Operation& operation, const Call& call) {
  Arm(planned, plannedCall);
  const int code = operation.call(call);
  fallenOn = Disarm();
  Check(PlatformHeldLocks() == 0, operation.name, "a block stays locked");
  return code;
}

void Check(bool holds, const std::string& where, const char* what) {
  constexpr int kTold = 20;
  if (holds || ++wrongs > kTold) return;
  std::printf("%s: %s; call %d of kind %d\n", where.c_str(), what, plannedCall,
              static_cast<int>(planned));
}

void Met(const char* operation, const std::string& outcome) {
  ++faults;
  met[operation].insert(outcome);
}

int Conclude(const char* allowed) {
  const Outcomes expected = Read(allowed);
  for (const Operation& operation : EveryOperation()) {
    const auto found = expected.find(operation.name);
    const std::set<std::string> may =
        found == expected.end() ? std::set<std::string>() : found->second;
    if (met[operation.name] == may) continue;
    ++wrongs;
    std::printf("%s came to", operation.name);
    for (const std::string& outcome : met[operation.name]) std::printf(" %s", outcome.c_str());
    std::printf("\n");
  }
  std::printf("%d faults put into %zu operations: %s\n", faults, EveryOperation().size(),
              wrongs == 0 ? "nothing lost" : "wrong");
  return wrongs == 0 ? 0 : 1;
}

}  // namespace stress
