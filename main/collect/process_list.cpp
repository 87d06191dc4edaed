// Goes through the platform's process table and asks `ps` for each process's owner and command line.
#include "main/collect/process_list.h"

#include "main/collect/command_runner.h"
#include "platform/platform.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kPsChunk = 500;

void AddProcess(const ProcessRecord& record, std::size_t number, Tag& processes) {
  const std::string output =
      RunCommand("ps -p" + std::to_string(record.pid) + " -o user=\"\" -o command=\"\"", kPsChunk);
  const std::size_t blank = output.find(' ');
  if (blank == std::string::npos) return;
  Tag* process = SetChildValue(processes, "process:" + std::to_string(number), MakeTextValue(record.name));
  SetAttribute(*process, "pid", MakeIntValue(record.pid));
  SetAttribute(*process, "ppid", MakeIntValue(record.parentPid));
  SetAttribute(*process, "user", MakeTextValue(Trimmed(output.substr(0, blank), " \n\r")));
  SetAttribute(*process, "cmd-line", MakeTextValue(Trimmed(output.substr(blank), " \n\r")));
}

}  // namespace

void CollectProcesses(TagTree& rawTree) {
  for (bool again = true; again;) {
    const std::optional<ProcessTable> table = ReadProcessTable();
    if (!table) return;
    Tag* processes = GetOrAddChild(RootOf(rawTree), "Processes");
    for (std::size_t k = 0; k < table->records.size(); ++k)
      if (table->records[k].pid != 0) AddProcess(table->records[k], k + 1, *processes);
    again = table->grew;  // what this pass wrote stays and is overwritten by number
  }
}
