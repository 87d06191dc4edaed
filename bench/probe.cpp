// Preloaded into a program, writes at its end what the program itself cost, without the processes that it started:
// "<processor time in ns> <peak memory in KiB>" goes into the file named by QUILL_PROBE. With QUILL_PROBE_COMMANDS the
// commands handed to popen are listed in that file, a zero byte behind each. The processes that the program starts are
// not probed.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

struct Targets {
  std::string cost;
  std::string commands;
};

// Never destroyed: it is read after everything else of the program has ended.
Targets& ProbeTargets() {
  static auto* targets = new Targets;
  return *targets;
}

void TakeVariable(const char* name, std::string& value) {
  if (const char* text = std::getenv(name)) value = text;
  unsetenv(name);
}

long PeakMemory() {
  long kibibytes = 0;
  std::FILE* status = std::fopen("/proc/self/status", "r");
  if (!status) return 0;
  char line[256];
  while (std::fgets(line, sizeof line, status) && std::sscanf(line, "VmHWM: %ld", &kibibytes) != 1) continue;
  std::fclose(status);
  return kibibytes;
}

__attribute__((constructor)) void StartProbe() {
  TakeVariable("QUILL_PROBE", ProbeTargets().cost);
  TakeVariable("QUILL_PROBE_COMMANDS", ProbeTargets().commands);
  unsetenv("LD_PRELOAD");
}

__attribute__((destructor)) void EndProbe() {
  struct timespec used;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  if (ProbeTargets().cost.empty()) return;
  std::FILE* file = std::fopen(ProbeTargets().cost.c_str(), "w");
  if (!file) return;
  std::fprintf(file, "%lld %ld\n", used.tv_sec * 1000000000LL + used.tv_nsec, PeakMemory());
  std::fclose(file);
}

void ListCommand(const char* command) {
  std::FILE* file = std::fopen(ProbeTargets().commands.c_str(), "a");
  if (!file) return;
  std::fwrite(command, 1, std::strlen(command) + 1, file);
  std::fclose(file);
}

}  // namespace

extern "C" std::FILE* popen(const char* command, const char* mode) {
  using Popen = std::FILE* (*)(const char*, const char*);
  static const auto next = reinterpret_cast<Popen>(dlsym(RTLD_NEXT, "popen"));
  if (!ProbeTargets().commands.empty()) ListCommand(command);
  return next(command, mode);
}
