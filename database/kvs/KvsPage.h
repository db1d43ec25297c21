#pragma once
// The page list of a table: its rows cut in pages of a fixed capacity.
// A page's index says where its block sits in the spool file; its first
// row follows from the rows in use of the pages before it in the list, so
// pages may be partly empty and out of file order.
namespace kvs {

struct KvsPage {
  long index = 0;      // block number in the spool file
  long used = 0;       // rows in use
  long first = 0;      // the table row of its first slot
  long capacity = 1024;
  KvsPage* next = nullptr;
  KvsPage* prev = nullptr;
  KvsPage* head = nullptr;  // the first page of the list
  long top = 0;             // in the first page: the highest index in the list
};

// A list of one empty page, index 0.
KvsPage* _KvsPageAlloc(long capacity = 1024);
// A new empty page at the end: index one above the highest, the same
// capacity, its first row just after the last page's rows.
KvsPage* KvsPageAppend(KvsPage* page);
// A new empty page after page, index one above the highest.
KvsPage* KvsPageInsert(KvsPage* page);
// Unlinks and frees page; returns the list's first page (null when it was
// the only one). First rows of the pages after it are set again.
KvsPage* KvsPageRemove(KvsPage* page);
// The page that holds row, or the last page when row is still within its
// capacity; null otherwise.
KvsPage* KvsPos2Page(KvsPage* page, long row);
// Pages in the list, not counting a last empty one.
long KvsPageNbr(KvsPage* page);
KvsPage* KvsPageBottom(KvsPage* page);
// Back to one empty page of index 0; returns it.
KvsPage* KvsPageRaz(KvsPage* page);
// First rows set again along the list from the rows in use; returns the
// rows of the whole list.
long KvsPageRestore(KvsPage* page);
void KvsPageFree(KvsPage* page);

}  // namespace kvs
