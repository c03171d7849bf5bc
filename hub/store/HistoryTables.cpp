#include "store/HistoryTables.h"

#include <algorithm>

namespace hub::store {

// The block of a channel is the row level << 56 | channel << 40 | number of the block since 1970.
struct HistoryTables::Level {
  int64_t number;
  int64_t step;   // ms
  int64_t width;  // of a block, ms

  int64_t RowOf(uint32_t channel, int64_t time) const {
    return number << 56 | static_cast<int64_t>(channel) << 40 | time / width;
  }
};

namespace {

constexpr int64_t kBatchesToRoll = 60;
constexpr int64_t kBlockMask = (int64_t{1} << 40) - 1;
constexpr int64_t kPartDropped = 10;  // of the oldest, where room is needed

int64_t RawRow(int64_t batch, uint32_t channel) { return batch * kMostChannels + channel; }

}  // namespace

const HistoryTables::Level HistoryTables::kMinutes{0, kMinute, kHour};
const HistoryTables::Level HistoryTables::kHours{1, kHour, kDay};

const char* HistoryTables::Schema() {
  return "CREATE TABLE batch (id INTEGER PRIMARY KEY, first INTEGER, last INTEGER);"
         "CREATE TABLE raw (id INTEGER PRIMARY KEY, samples BLOB);"
         "CREATE TABLE block (id INTEGER PRIMARY KEY, steps BLOB);"
         "CREATE TABLE state (name BLOB PRIMARY KEY, value INTEGER) WITHOUT ROWID;";
}

HistoryTables::State HistoryTables::ReadState() {
  State state;
  Statement statement(database_, "SELECT name, value FROM state");
  while (statement.Next()) {
    if (statement.Bytes(0) == "rolled") state.rolled = statement.Integer(1);
    if (statement.Bytes(0) == "rolled_at") state.rolled_at = statement.Integer(1);
    if (statement.Bytes(0) == "raw_from") state.raw_from = statement.Integer(1);
    if (statement.Bytes(0) == "minutes_from") state.minutes_from = statement.Integer(1);
  }
  return state;
}

void HistoryTables::SetState(std::string_view name, int64_t value) {
  Statement(database_, "INSERT OR REPLACE INTO state VALUES (?, ?)").Bind(name, value).Run();
}

void HistoryTables::Write(const std::deque<ChannelSample>& samples) {
  if (samples.empty()) return;
  std::map<uint32_t, std::vector<Sample>> channels;
  int64_t first = samples.front().sample.time;
  int64_t last = first;
  for (const auto& [channel, sample] : samples) {
    channels[channel].push_back(sample);
    first = std::min(first, sample.time);
    last = std::max(last, sample.time);
  }
  // Never a number twice: what is rolled is known by it.
  const int64_t newest = database_.Number("SELECT max(id) FROM batch");
  const int64_t batch = std::max(newest, ReadState().rolled) + 1;
  Statement(database_, "INSERT INTO batch VALUES (?, ?, ?)").Bind(batch, first, last).Run();
  Statement insert(database_, "INSERT INTO raw VALUES (?, ?)");
  for (const auto& [channel, values] : channels)
    insert.Bind(RawRow(batch, channel), PackSamples(first, values)).Run();
}

bool HistoryTables::IsDueToRoll() {
  return database_.Number("SELECT max(id) FROM batch") - ReadState().rolled >= kBatchesToRoll;
}

void HistoryTables::Roll() {
  Blocks blocks;
  Statement statement(database_,
                      "SELECT batch.first, raw.id % 4096, raw.samples FROM batch CROSS JOIN raw "
                      "ON raw.id BETWEEN batch.id * 4096 AND batch.id * 4096 + 4095 "
                      "WHERE batch.id > ?");
  statement.Bind(ReadState().rolled);
  while (statement.Next()) {
    const auto samples = UnpackSamples(statement.Integer(0), statement.Bytes(2));
    if (!samples) return FailUnreadable("raw");
    const auto channel = static_cast<uint32_t>(statement.Integer(1));
    for (const Sample& sample : *samples) AddToBlocks(blocks, channel, sample);
  }
  for (auto& [row, steps] : blocks) MergeBlock(row, std::move(steps));
  const int64_t newest = database_.Number("SELECT max(id) FROM batch");
  SetState("rolled", std::max(newest, ReadState().rolled));
}

std::optional<int64_t> HistoryTables::NoteRollTime(int64_t now) {
  const auto before = ReadState().rolled_at;
  SetState("rolled_at", now);
  return before;
}

void HistoryTables::AddToBlocks(Blocks& blocks, uint32_t channel, const Sample& sample) {
  for (const Level* level : {&kMinutes, &kHours}) {
    const auto number = static_cast<uint64_t>(sample.time % level->width / level->step);
    blocks[level->RowOf(channel, sample.time)][number].Add(sample.value);
  }
}

void HistoryTables::MergeBlock(int64_t row, Steps steps) {
  Statement read(database_, "SELECT steps FROM block WHERE id = ?");
  if (read.Bind(row).Next()) {
    const auto earlier = UnpackSteps(read.Bytes(0));
    if (!earlier) return FailUnreadable("block");
    for (const auto& [number, summary] : *earlier) steps[number].Add(summary);
  }
  std::vector<Step> merged;
  for (const auto& [number, summary] : steps) merged.push_back({number, summary});
  Statement(database_, "INSERT OR REPLACE INTO block VALUES (?, ?)")
      .Bind(row, PackSteps(merged))
      .Run();
}

void HistoryTables::DropOlder(int64_t now, int keep_days) {
  std::vector<int64_t> batches;
  Statement old(database_, "SELECT id FROM batch WHERE last < ? AND id <= ?");
  old.Bind(now - keep_days * kDay, ReadState().rolled);
  while (old.Next()) batches.push_back(old.Integer(0));
  DropBatches(batches, now);
  DropMinutes(now - kDaysOfMinutes * kDay);
}

void HistoryTables::DropBatches(const std::vector<int64_t>& batches, int64_t now) {
  int64_t raw_from = ReadState().raw_from;
  const int64_t before = raw_from;
  Statement last(database_, "SELECT last FROM batch WHERE id = ?");
  Statement drop_raw(database_, "DELETE FROM raw WHERE id BETWEEN ? AND ?");
  Statement drop_batch(database_, "DELETE FROM batch WHERE id = ?");
  for (const int64_t batch : batches) {
    // A time to come is a clock's error, and says nothing about what is kept.
    if (last.Bind(batch).Next() && last.Integer(0) <= now)
      raw_from = std::max(raw_from, last.Integer(0) + 1);
    drop_raw.Bind(RawRow(batch, 0), RawRow(batch, kMostChannels - 1)).Run();
    drop_batch.Bind(batch).Run();
  }
  if (raw_from != before) SetState("raw_from", raw_from);
}

bool HistoryTables::DropOldestRaw(int64_t now) {
  if (database_.Number("SELECT max(id) FROM batch") > ReadState().rolled) Roll();
  const int64_t count = database_.Number("SELECT count(*) FROM batch");
  std::vector<int64_t> batches;
  Statement oldest(database_, "SELECT id FROM batch ORDER BY id LIMIT ?");
  oldest.Bind(count / kPartDropped + 1);
  while (oldest.Next()) batches.push_back(oldest.Integer(0));
  DropBatches(batches, now);
  return !batches.empty();
}

bool HistoryTables::DropOldestMinutes() {
  const auto oldest = OldestBlock(kMinutes);
  if (oldest) DropMinutes(*oldest + kDay);
  return oldest.has_value();
}

bool HistoryTables::DropOldestHours() {
  const auto oldest = OldestBlock(kHours);
  if (oldest) DropBlocks(kHours, *oldest + kDay);
  return oldest.has_value();
}

void HistoryTables::DropMinutes(int64_t before) {
  if (DropBlocks(kMinutes, before)) SetState("minutes_from", before);
}

bool HistoryTables::DropBlocks(const Level& level, int64_t before) {
  if (before < level.width) return false;
  bool dropped = false;
  Statement next(database_, "SELECT id FROM block WHERE id >= ? AND id < ? LIMIT 1");
  Statement drop(database_, "DELETE FROM block WHERE id >= ? AND id < ?");
  for (uint32_t channel = 0; channel < kMostChannels; ++channel) {
    // On to the next channel that has blocks.
    if (!next.Bind(level.RowOf(channel, 0), level.RowOf(kMostChannels, 0)).Next()) break;
    const int64_t row = next.Integer(0);
    channel = static_cast<uint32_t>(row >> 40) % kMostChannels;
    if (row >= level.RowOf(channel, before)) continue;
    drop.Bind(level.RowOf(channel, 0), level.RowOf(channel, before)).Run();
    dropped = true;
  }
  return dropped;
}

std::optional<int64_t> HistoryTables::OldestBlock(const Level& level) {
  std::optional<int64_t> oldest;
  Statement next(database_, "SELECT id FROM block WHERE id >= ? AND id < ? LIMIT 1");
  for (uint32_t channel = 0; channel < kMostChannels; ++channel) {
    if (!next.Bind(level.RowOf(channel, 0), level.RowOf(kMostChannels, 0)).Next()) break;
    channel = static_cast<uint32_t>(next.Integer(0) >> 40) % kMostChannels;
    const int64_t start = (next.Integer(0) & kBlockMask) * level.width;
    oldest = std::min(oldest.value_or(start), start);
  }
  return oldest;
}

History HistoryTables::Read(const Span& span, const std::deque<ChannelSample>& waiting) {
  const State state = ReadState();
  if (span.from >= state.raw_from)
    if (auto raw = ReadRaw(span, waiting)) return *raw;

  int64_t finest = 0;
  if (span.from < state.raw_from) finest = kMinute;
  if (span.from < state.minutes_from) finest = kHour;
  const int64_t step = StepFor(span, finest);
  Curve curve(span, step);
  int64_t behind = 0;
  if (step >= kMinute) {
    ReadBlocks(step < kHour ? kMinutes : kHours, span.channel, curve);
    behind = state.rolled;
  }
  const auto add = [&curve](const Sample& sample) {
    curve.Add(sample.time, Summary{1, sample.value, sample.value, sample.value});
    return true;
  };
  ReadBatches(span.channel, curve.Begin(), curve.End() - 1, behind, add);
  for (const auto& [channel, sample] : waiting)
    if (channel == span.channel) add(sample);
  return curve.Finish();
}

std::optional<History> HistoryTables::ReadRaw(const Span& span,
                                              const std::deque<ChannelSample>& waiting) {
  std::vector<Sample> samples;
  const auto add = [&](const Sample& sample) {
    if (sample.time >= span.from && sample.time <= span.to) samples.push_back(sample);
    return samples.size() <= span.points;
  };
  // Most spans that do not fit are found so by what is in memory.
  for (const auto& [channel, sample] : waiting)
    if (channel == span.channel && !add(sample)) return std::nullopt;
  std::vector<Sample> newest = std::move(samples);
  samples.clear();
  ReadBatches(span.channel, span.from, span.to, 0, add);
  if (samples.size() + newest.size() > span.points) return std::nullopt;
  samples.insert(samples.end(), newest.begin(), newest.end());
  return ToHistory(std::move(samples));
}

void HistoryTables::ReadBatches(uint32_t channel, int64_t from, int64_t to, int64_t behind,
                                const SampleSink& sink) {
  Statement statement(database_,
                      "SELECT batch.first, raw.samples FROM batch CROSS JOIN raw "
                      "ON raw.id = batch.id * 4096 + ? "
                      "WHERE batch.id > ? AND batch.first <= ? AND batch.last >= ?");
  statement.Bind(static_cast<int64_t>(channel), behind, to, from);
  while (statement.Next()) {
    const auto samples = UnpackSamples(statement.Integer(0), statement.Bytes(1));
    if (!samples) return FailUnreadable("raw");
    for (const Sample& sample : *samples)
      if (!sink(sample)) return;
  }
}

void HistoryTables::ReadBlocks(const Level& level, uint32_t channel, Curve& curve) {
  Statement statement(database_, "SELECT id, steps FROM block WHERE id BETWEEN ? AND ?");
  statement.Bind(level.RowOf(channel, curve.Begin()), level.RowOf(channel, curve.End() - 1));
  while (statement.Next()) {
    const auto steps = UnpackSteps(statement.Bytes(1));
    if (!steps) return FailUnreadable("block");
    const int64_t start = (statement.Integer(0) & kBlockMask) * level.width;
    for (const auto& [number, summary] : *steps)
      curve.Add(start + static_cast<int64_t>(number) * level.step, summary);
  }
}

void HistoryTables::FailUnreadable(const char* table) {
  database_.Fail(true, std::string("its table ") + table + " cannot be read");
}

}  // namespace hub::store
