#include "store/Gathered.h"

#include <utility>

namespace hub::store {

namespace {

size_t BytesOf(const model::JournalEntry& entry) {
  return entry.kind.size() + entry.text.size() + entry.by.size();
}

}  // namespace

void Gathered::AddSample(const ChannelSample& sample) {
  if (samples_.size() == kMostSamples) {
    samples_.pop_front();
    ++dropped_;
  }
  samples_.push_back(sample);
}

void Gathered::AddEntry(model::JournalEntry entry) {
  entry_bytes_ += BytesOf(entry);
  entries_.push_back(std::move(entry));
  // The last one stays, however long it is.
  while (entries_.size() > 1 &&
         (entries_.size() > kMostEntries || entry_bytes_ > kMostEntryBytes)) {
    entry_bytes_ -= BytesOf(entries_.front());
    entries_.pop_front();
  }
}

void Gathered::Append(Gathered later) {
  for (auto& [name, text] : later.documents) documents[name] = std::move(text);
  for (const ChannelSample& sample : later.samples_) AddSample(sample);
  for (model::JournalEntry& entry : later.entries_) AddEntry(std::move(entry));
}

void Gathered::Clear() {
  samples_.clear();
  entries_.clear();
  entry_bytes_ = 0;
  documents.clear();
}

}  // namespace hub::store
