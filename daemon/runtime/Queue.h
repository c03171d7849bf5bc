// QEQUEUE, the one channel by which the threads hand messages to each other: first
// in, first out, each message copied in and out.
//
// Created by the start-up code or by the interface it serves. Any thread may fill a
// queue; exactly one thread takes from it, and has to look whether there is a message.
#pragma once

#include <cstddef>
#include <deque>

#include "runtime/ByteList.h"
#include "runtime/MutexClass.h"

class QEQUEUE {
 public:
  void ToQueue(QList item);

  // The oldest message; an empty list where there is none.
  QList DeQueue();

  bool IsEmpty();
  std::size_t Size();

  CMutexClass Lock;         // guards Items
  std::deque<QList> Items;  // oldest first, no limit
};
