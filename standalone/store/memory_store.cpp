// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>

#include "base/ascii.h"
#include "host/codes.h"
#include "reelhost/store.h"
#include "store/log_fields.h"

namespace reelhost {

namespace {

struct Record {
  StoredLog log;
  std::int64_t deletion = 0; ///< 0: not in the trash
};

class MemoryStore final : public Store {
public:
  MemoryStore(const ProjectInfo& info, const KeyValues& options) : info_(info)
  {
    for (const auto& [key, value] : options)
      options_[key] = value;
  }

  std::string subject() const override { return "memory"; }
  void begin(Access, std::chrono::milliseconds) override {}
  void end() noexcept override {}
  ProjectInfo info() override { return info_; }
  KeyValues options() override { return KeyValues(options_.begin(), options_.end()); }
  std::int64_t nextNumber() override { return lastNumber_ + 1; }

  void readReels(const std::function<void(StoredLog&&)>& sink) override
  {
    read(sink, [](const Record& record) { return record.deletion == 0 && record.log.type == codes::reelLog; });
  }

  void readOthers(const std::function<void(StoredLog&&)>& sink) override
  {
    read(sink, [](const Record& record) { return record.deletion == 0 && record.log.type != codes::reelLog; });
  }

  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override
  {
    std::map<std::string, std::int64_t> counts;
    for (const auto& [number, record] : records_) {
      if (record.deletion != 0 || record.log.type == codes::reelLog)
        continue;
      for (const auto& [key, value] : record.log.fields)
        if (key == shotTexts.front().key && !value.empty())
          ++counts[reeldb::base::fold(value)];
    }
    return {counts.begin(), counts.end()};
  }

  std::vector<std::int64_t> lastDeletion() override
  {
    std::vector<std::int64_t> numbers;
    const std::int64_t last = lastDeletionNumber();
    for (const auto& [number, record] : records_)
      if (last != 0 && record.deletion == last)
        numbers.push_back(number);
    return numbers;
  }

  void readLastDeletion(const std::function<void(StoredLog&&)>& sink) override
  {
    const std::int64_t last = lastDeletionNumber();
    read(sink, [last](const Record& record) { return last != 0 && record.deletion == last; });
  }

  std::int64_t trashCount() override
  {
    return std::count_if(records_.begin(), records_.end(),
                         [](const auto& entry) { return entry.second.deletion != 0; });
  }

  void commit(const Changes& changes) override
  {
    // Memory is allocated first, so that nothing has changed if that fails.
    std::map<std::int64_t, Record> incoming;
    for (const StoredLog& log : changes.logs) {
      StoredLog& kept = incoming[log.number].log;
      kept = log;
      kept.fields = arranged(log.fields);
    }
    std::map<std::string, std::string> options = options_;
    for (const auto& [key, value] : changes.options)
      options[key] = value;

    if (changes.undelete)
      if (const std::int64_t last = lastDeletionNumber(); last != 0)
        for (auto& [number, record] : records_)
          if (record.deletion == last)
            record.deletion = 0;
    if (changes.compact)
      std::erase_if(records_, [](const auto& entry) { return entry.second.deletion != 0; });
    while (!incoming.empty()) {
      auto node = incoming.extract(incoming.begin());
      lastNumber_ = std::max(lastNumber_, node.key());
      const auto there = records_.find(node.key());
      if (there == records_.end())
        records_.insert(std::move(node));
      else
        std::swap(there->second.log, node.mapped().log);
    }
    const std::int64_t deletion = lastDeletionNumber() + 1;
    for (const std::int64_t number : changes.deleted) {
      const auto there = records_.find(number);
      if (there != records_.end() && there->second.deletion == 0)
        there->second.deletion = deletion;
    }
    options_.swap(options);
  }

  bool changedElsewhere() override { return false; }
  std::vector<std::string> check() override { return {}; }

private:
  template <class Chosen>
  void read(const std::function<void(StoredLog&&)>& sink, Chosen chosen)
  {
    for (const auto& [number, record] : records_)
      if (chosen(record))
        sink(StoredLog(record.log));
  }

  std::int64_t lastDeletionNumber() const
  {
    std::int64_t last = 0;
    for (const auto& [number, record] : records_)
      last = std::max(last, record.deletion);
    return last;
  }

  ProjectInfo info_;
  std::map<std::string, std::string> options_;
  std::map<std::int64_t, Record> records_;
  std::int64_t lastNumber_ = 0;
};

} // namespace

std::unique_ptr<Store> makeMemoryStore(const ProjectInfo& info, const KeyValues& options)
{
  return std::make_unique<MemoryStore>(info, options);
}

} // namespace reelhost
