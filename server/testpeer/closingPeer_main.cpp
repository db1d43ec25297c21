// A stand-in for a server that starts and dies, for the tests of what a
// client does when no server answers: it takes a data server's command
// line, connects to the address, reads the first message and leaves
// without a word.

#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vString.h"
#include "remote/CommChan.h"
#include "remote/CommChanAddress.h"
#include "remote/CommChanMaker.h"

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  try {
    vHandle<CommChan> chan = CommChanMaker::connect(CommChanAddress(vString(argv[2])));
    Packer in(1000);
    if (in.receive(*chan) == CommChan::OK) in.discard();
  } catch (UtlExcept const&) {
    return 3;
  }
  return 0;
}
