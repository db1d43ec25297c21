#include "database/kvs/KvsPage.h"

#include <algorithm>

namespace kvs {

namespace {

long highest(KvsPage* head) {
  long top = -1;
  for (KvsPage* p = head; p; p = p->next) top = std::max(top, p->index);
  return top;
}

// Indexes set from outside the list calls are taken in here.
void retop(KvsPage* head) {
  if (head) head->top = highest(head);
}

}  // namespace

KvsPage* _KvsPageAlloc(long capacity) {
  auto* p = new KvsPage;
  p->capacity = capacity > 0 ? capacity : 1024;
  p->head = p;
  return p;
}

KvsPage* KvsPageInsert(KvsPage* page) {
  if (!page) return nullptr;
  auto* p = new KvsPage;
  p->index = ++page->head->top;
  p->capacity = page->capacity;
  p->first = page->first + page->used;
  p->head = page->head;
  p->prev = page;
  p->next = page->next;
  if (page->next) page->next->prev = p;
  page->next = p;
  return p;
}

KvsPage* KvsPageAppend(KvsPage* page) { return page ? KvsPageInsert(KvsPageBottom(page)) : nullptr; }

KvsPage* KvsPageRemove(KvsPage* page) {
  if (!page) return nullptr;
  KvsPage* head = page->head;
  if (page->prev) page->prev->next = page->next;
  if (page->next) page->next->prev = page->prev;
  if (page == head) {
    head = page->next;
    for (KvsPage* p = head; p; p = p->next) p->head = head;
  }
  delete page;
  KvsPageRestore(head);
  return head;
}

KvsPage* KvsPos2Page(KvsPage* page, long row) {
  if (!page || row < 0) return nullptr;
  KvsPage* p = page->head;
  for (; p->next; p = p->next)
    if (row >= p->first && row < p->first + p->used) return p;
  return row >= p->first && row < p->first + p->capacity ? p : nullptr;
}

long KvsPageNbr(KvsPage* page) {
  if (!page) return 0;
  long n = 0;
  for (KvsPage* p = page->head; p; p = p->next)
    if (p->next || p->used) ++n;
  return n;
}

KvsPage* KvsPageBottom(KvsPage* page) {
  if (!page) return nullptr;
  while (page->next) page = page->next;
  return page;
}

KvsPage* KvsPageRaz(KvsPage* page) {
  if (!page) return nullptr;
  KvsPage* head = page->head;
  KvsPageFree(head->next);
  head->next = nullptr;
  head->index = head->used = head->first = head->top = 0;
  return head;
}

long KvsPageRestore(KvsPage* page) {
  retop(page ? page->head : nullptr);
  long row = 0;
  for (KvsPage* p = page ? page->head : nullptr; p; p = p->next) {
    p->first = row;
    row += p->used;
  }
  return row;
}

void KvsPageFree(KvsPage* page) {
  while (page) {
    KvsPage* next = page->next;
    delete page;
    page = next;
  }
}

}  // namespace kvs
