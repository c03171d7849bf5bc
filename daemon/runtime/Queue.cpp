#include "runtime/Queue.h"

#include <utility>

void QEQUEUE::ToQueue(QList item) {
  const CMutexGuard guard(Lock);
  Items.push_back(std::move(item));
}

QList QEQUEUE::DeQueue() {
  QList result;
  if (IsEmpty()) return result;  // only this thread takes items, so none vanishes meanwhile
  const CMutexGuard guard(Lock);
  result = std::move(Items.front());
  Items.pop_front();
  return result;
}

bool QEQUEUE::IsEmpty() {
  const CMutexGuard guard(Lock);
  return Items.empty();
}

std::size_t QEQUEUE::Size() {
  const CMutexGuard guard(Lock);
  return Items.size();
}
