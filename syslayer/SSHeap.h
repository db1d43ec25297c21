#ifndef SYSLAYER_SSHEAP_H
#define SYSLAYER_SSHEAP_H

// ss: structured storage, the system layer's common memory. One heap of
// 32-bit words, ss_, addressed by word index, holding typed structures
// linked into a tree. Plain functions, arguments by reference, id first.
//
// Heap header (words 0-19): word 0 the root's index, word 1 flags (bit 0:
// check ids), words 2-19 the guard value 0x1DEADBAD.
//
// A structure with index s:
//   s-1  self index, s while the structure lives ("Bad struct id" when it
//        differs and id checking is on)
//   s    size: the words from s to the structure's end
//   s+1  parent index (0 for the root)
//   s+2  reserved, 0
//   then the type map, four bits a slot, eight slots a word (ss_bitload_),
//   then one value word a slot. The root has 2 slots and, before its map,
//   the machine type at s+3 ($MACHINE: "convex" 2, "sun4" 1, else 0), so
//   its size is 7.
//
// Slot types:
//   0 unset, 1 integer, 2 float (its bits), 3 double (this slot and the
//   next), 4 text, 5 structure (the child's index), 6 code (an integer
//   code);
//   7 integer array, 8 float array, 9 double array, 10 text array,
//   11 structure array.
// An array's value word is the index a of its block: a-1 self, a size,
// a+1 parent, a+2 element count, elements from a+3 (two words each for
// doubles, a text pointer or a structure index for texts and structures).
// A text's block b: -4, its size in words ((length+3)/4 + 4), parent,
// length in bytes, the bytes; the value word holds b+3.
//
// The heap grows by reallocation, so ss_ may move at any allocation: keep
// indices, never pointers into it. Process-wide, no lock.
//
// Failures go through er_fatal_ labelled with the routine's capitalised
// name ("SS_alloc"). An index outside the heap or a slot ordinal outside
// the structure is always fatal, whether checking is on or not.

#include <cstdint>

extern int32_t* ss_;

enum {
  SS_GUARD = 501930925,  // 0x1DEADBAD
  SS_TEXTMARK = -4,
  SS_UNSET = 0,
  SS_INT = 1,
  SS_FLOAT = 2,
  SS_DOUBLE = 3,
  SS_TEXT = 4,
  SS_STRUCT = 5,
  SS_CODE = 6,
  SS_AINT = 7,
  SS_AFLOAT = 8,
  SS_ADOUBLE = 9,
  SS_ATEXT = 10,
  SS_ASTRUCT = 11
};

// The root: made at the first call, returned after.
void ss_init_(int32_t& id);
void ss_root_(int32_t& id);
// Words the heap holds now.
int64_t ss_heapsize_();
// ok is 1 when id is a live structure.
void ss_verify_(int32_t const& id, int32_t& ok);

// A new structure of nslots slots under parent, with the slot types of
// types (nslots of them; null for all unset).
void ss_define_(int32_t& id, int32_t const& parent, int32_t const& nslots, int32_t const* types);
// Makes a structure of nslots slots and hangs it in slot ordinal of id
// (which becomes a structure slot); what the slot held goes.
void ss_defnth_(int32_t& child, int32_t const& id, int32_t const& ordinal, int32_t const& nslots,
                int32_t const* types);
// Sets a slot's type, dropping what it held.
void ss_def_(int32_t const& id, int32_t const& ordinal, int32_t const& type);
// The structure and all below it go, and the parent's slot that held it
// is cleared.
void ss_delete_(int32_t const& id);
// What slot ordinal holds goes; the slot keeps its type, value 0.
void ss_delnth_(int32_t const& id, int32_t const& ordinal);

void ss_n_(int32_t const& id, int32_t& n);
void ss_size_(int32_t const& id, int32_t& size);
void ss_gettype_(int32_t const& id, int32_t const& ordinal, int32_t& type);
void ss_puttype_(int32_t const& id, int32_t const& ordinal, int32_t const& type);
// The raw value word of a slot.
void ss_getnth_(int32_t const& id, int32_t const& ordinal, int32_t& value);
void ss_putnth_(int32_t const& id, int32_t const& ordinal, int32_t const& value);
void ss_getdouble_(int32_t const& id, int32_t const& ordinal, double& value);
void ss_putdouble_(int32_t const& id, int32_t const& ordinal, double const& value);

// Text slots. ss_gettext_ blank-fills the caller's field of `length`
// bytes; a slot with no value gives blanks.
void ss_puttext_(int32_t const& id, int32_t const& ordinal, char const* text, int32_t const& length);
void ss_gettext_(int32_t const& id, int32_t const& ordinal, char* text, int32_t const& length);
void ss_lentext_(int32_t const& id, int32_t const& ordinal, int32_t& length);

// Arrays. ss_alloc_ sizes the array of slot ordinal to count elements,
// keeping those there and zeroing new ones; the slot must have an array
// type ("Illegal allocate attempt").
void ss_alloc_(int32_t const& id, int32_t const& ordinal, int32_t const& count);
void ss_asize_(int32_t const& id, int32_t const& ordinal, int32_t& count);
// Elements count from 1; an element outside the array is fatal, and an
// access of the wrong kind is warned of ("Mis-matched array type").
void ss_putatext_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char const* text,
                  int32_t const& length);
void ss_getatext_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char* text,
                  int32_t const& length);
void ss_putadouble_(int32_t const& id, int32_t const& ordinal, int32_t const& element, double const& value);
void ss_getadouble_(int32_t const& id, int32_t const& ordinal, int32_t const& element, double& value);
// Integer, float-bit, text-pointer or structure words of an array.
void ss_putaword_(int32_t const& id, int32_t const& ordinal, int32_t const& element, int32_t const& value);
void ss_getaword_(int32_t const& id, int32_t const& ordinal, int32_t const& element, int32_t& value);

// The first structure below id (depth first, through structure slots and
// structure arrays) whose integer slot keyOrdinal holds key; 0 for none.
// The search below, started afresh.
void ss_locate_(int32_t const& id, int32_t const& keyOrdinal, int32_t const& key, int32_t& found);

// The same as a search that stops at each hit and goes on from it. The
// caller keeps the state: two work arrays of SS_LOCATEDEPTH entries (the
// path from id down to the hit, and where the search goes on at each step)
// and size. A size of SS_LOCATEMARK or less starts a new search; after a
// hit size is SS_LOCATEMARK plus the path's depth, and the next call with
// it goes on below the hit; a search that ends finds 0 and sets size to 0.
// A path deeper than the arrays is fatal ("Tree too deep"), and so is a
// state whose structures went away ("Bad search state").
enum { SS_LOCATEDEPTH = 100, SS_LOCATEMARK = 1000000 };
void ss_locate_(int32_t const& id, int32_t const& keyOrdinal, int32_t const& key, int32_t& found, int32_t* path,
                int32_t* next, int32_t& size);
// ss_unlocate1_ steps back over the last hit, so that the search skips what
// lies below it; ss_unlocate_ steps back over the structure id on the
// search's path ("Not on the search path" when it is not there), and over
// the search's own start ends it.
void ss_unlocate1_(int32_t* path, int32_t* next, int32_t& size);
void ss_unlocate_(int32_t const& id, int32_t* path, int32_t* next, int32_t& size);

// The same for a text key: the first structure whose text slot keyOrdinal
// holds exactly the `length` bytes of key.
void ss_locates_(int32_t const& id, int32_t const& keyOrdinal, char const* key, int32_t const& length,
                 int32_t& found);
// Texts with their lengths (n, not cut to the field).
void ss_gettextn_(int32_t const& id, int32_t const& ordinal, char* text, int32_t const& length, int32_t& n);
void ss_getatextn_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char* text,
                   int32_t const& length, int32_t& n);
// The value of a code slot (a warning and 0 for another kind of slot).
void ss_getcode_(int32_t const& id, int32_t const& ordinal, int32_t& code);

// Moving structures: ss_adopt_ hangs id in slot ordinal of parent (what the
// slot held goes), ss_adoptarray_ in element `element` of its structure
// array; the old parent lets go. The root, and a move below itself, are
// refused ("Illegal adopt").
void ss_adopt_(int32_t const& id, int32_t const& parent, int32_t const& ordinal);
void ss_adoptarray_(int32_t const& id, int32_t const& parent, int32_t const& ordinal, int32_t const& element);
// ss_remove_ takes id out of its parent without deleting it (parent 0),
// ss_remover_ deletes every structure below id, ss_subremove_ those held in
// one slot (a structure or the elements of a structure array).
void ss_remove_(int32_t const& id);
void ss_remover_(int32_t const& id);
void ss_subremove_(int32_t const& id, int32_t const& ordinal);

// Raw blocks of words outside any structure: index of the first word;
// ss_untalloc_ gives one back. The words come zeroed (ss_calloc_ and
// ss_balloc_ alike).
void ss_balloc_(int32_t const& words, int32_t& index);
void ss_calloc_(int32_t const& words, int32_t& index);
void ss_untalloc_(int32_t const& index);
// A block reserved at its largest size while its use is not known yet:
// ss_commit_ keeps the first `used` words as a raw block (ss_untalloc_
// gives it back later) and frees the rest, ss_break_ frees it all.
// Anything else than an open reservation is fatal ("Not a reservation").
void ss_allocate_(int32_t const& words, int32_t& index);
void ss_commit_(int32_t const& index, int32_t const& used);
void ss_break_(int32_t const& index);
// The index of a slot's first data word, to fill or read it in bulk
// through ss_ until the heap next grows: the value word of a scalar, the
// first element of an array, the first bytes of a text; 0 for an array or
// text not made yet.
void ss_base_(int32_t const& id, int32_t const& ordinal, int32_t& base);
// The words the heap spends on id and all it owns: its block, texts,
// arrays and the structures below it.
void ss_slength_(int32_t const& id, int32_t& length);
// Hangs id at the end of the structure array in slot ordinal of parent (an
// unset slot becomes one); element is its place there. The old parent
// lets go; refusals as ss_adopt_.
void ss_attach_(int32_t const& id, int32_t const& parent, int32_t const& ordinal, int32_t& element);

// Four-bit type maps: slot ordinal (from 1) of the map starting at map.
void ss_bitload_(int32_t* map, int32_t const& ordinal, int32_t const& type);
int32_t ss_bitget_(int32_t const* map, int32_t const& ordinal);

#endif
