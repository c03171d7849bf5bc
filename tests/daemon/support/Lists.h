// Byte lists and texts as a test writes them down.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "runtime/ByteList.h"
#include "runtime/Queue.h"

inline QList List(std::initializer_list<int> values) {
  QList list;
  for (const int value : values) list.push_back(static_cast<char>(value));
  return list;
}

inline QList List(const std::string& text) { return {text.begin(), text.end()}; }

inline std::string Text(const QList& list) { return {list.begin(), list.end()}; }

// Everything a queue holds, oldest first.
inline std::vector<QList> TakeAll(QEQUEUE& queue) {
  std::vector<QList> items;
  while (!queue.IsEmpty()) items.push_back(queue.DeQueue());
  return items;
}

inline std::vector<std::string> TakeTexts(QEQUEUE& queue) {
  std::vector<std::string> texts;
  for (const QList& item : TakeAll(queue)) texts.push_back(Text(item));
  return texts;
}
