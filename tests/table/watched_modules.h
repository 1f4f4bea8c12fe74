// The four modules, watched: each call that the toolkit makes to them is written down, and may be
// answered in the module's place. Modules and entries can be hidden.
#ifndef TESTS_TABLE_WATCHED_MODULES_H
#define TESTS_TABLE_WATCHED_MODULES_H

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace watched {

using Log = std::vector<std::string>;

inline Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct State {
  Log log;  // "load x", "find x", "unload x", and each call as "function(argument, ...)"
  std::map<std::string, std::deque<double>> answers;  // by function, call by call; then its own
  std::set<std::string> absent;                       // file names and entries
  std::map<const void*, std::string> names;           // what the log calls a pointer; else *
  std::string folder;                                 // the log has ~ in its place
  bool newHandles = true;  // a block comes back under another handle than it came under
  bool writes = true;      // the log
};

State& TheState();

// All entries, module by module, in the order in which they are looked up.
const Log& EntryNames();

}  // namespace watched

namespace rig {

// The n-th operator new from now on fails, once; 0 lets all succeed.
void FailNew(int n) noexcept;

}  // namespace rig

#endif  // TESTS_TABLE_WATCHED_MODULES_H
