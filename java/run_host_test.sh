#!/usr/bin/env bash
# Runs the Java test host in a real virtual machine against librondo.so and
# compares what it prints, byte for byte, with what the scenario expects.
#
#   run_host_test.sh SCENARIO LIBRARY WORKDIR
#
# Scenarios:
#   exports  the library exports exactly the seven native methods
#   server   a real data server (VSERVER) on this host, to which FS_CLUSTERS
#            maps the server name, with the UnitTest back end: open, list by
#            class
#   data     the same with stores that have data (packed store files that
#            DEMOSTORES writes): what a seismic line, a map and a time slice
#            hold, attributes loaded into arrays with their checksums, and
#            the loads that answer false
#   nostore  a data set the project does not have: the host ends with the
#            reason
#   refused  a data server that cannot serve (an unknown back end): the
#            connection fails with the server's report
#   order    calls out of order: an empty map entry, and contents of a
#            project that was never opened, which ends the host
#   segyio   the directory back end on SEG-Y files that python3-segyio
#            writes, each with a format file that gives two keys: contents,
#            the data info the mapping program asks for, and loads whose
#            every value is compared with what segyio reads; the server
#            killed between two loads; a file cut short while the server
#            has it open; then a line without a format file, whose single
#            key ends the host when asked for its data info
#   mapping  the directory back end on a segyio line with a mapping file
#            named after it (line1.cstf): attributes the mapping computes,
#            and the trace through it, loaded by the host and compared
#            with values worked out from what segyio reads
#   zon      the database back end: a real kvsd on a free loopback port,
#            the server folder and two plain tables written by zonload, and
#            a server with BACKEND Zonmesh: contents, data info, loads; the
#            daemon killed between two loads; then the daemon unreachable
#            when the project is opened
# The line the client prints when it starts a server carries a generated
# address and the build number: it is compared with both left out.
# Exit 0 on a match, 1 on a mismatch, 77 when no JVM of the library's width
# is at hand.
set -euo pipefail

scenario=$1
library=$2
work=$3
here=$(cd "$(dirname "$0")" && pwd)
JAVA=${JAVA:-java}
JAVAC=${JAVAC:-javac}

fail() { echo "FAIL: $*" >&2; exit 1; }

if [ "$scenario" = exports ]; then
  expected=$(for m in RondoGetContents RondoGetDataInfo RondoLoadAttributeF RondoLoadAttributeFromTabindexF \
                      RondoLoadAttributeI RondoOpenConnection RondoOpenProject; do
               echo "Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_$m"
             done)
  actual=$(nm -D --defined-only "$library" | awk '{print $3}' | sort)
  if [ "$actual" != "$expected" ]; then
    diff <(echo "$expected") <(echo "$actual") >&2 || true
    fail "exported symbols differ"
  fi
  echo "exports: the seven native methods, nothing else"
  exit 0
fi

# A library of another width than the JVM cannot be loaded: not a failure
# of the library, so the test is skipped.
lib_bits=$(od -An -j4 -N1 -tu1 "$library" | tr -d ' ')   # ELF class: 1 = 32-bit, 2 = 64-bit
jvm_bits=$("$JAVA" -XshowSettings:properties -version 2>&1 | awk -F'= ' '/sun.arch.data.model/ {print $2}')
if { [ "$lib_bits" = 1 ] && [ "$jvm_bits" != 32 ]; } || { [ "$lib_bits" = 2 ] && [ "$jvm_bits" != 64 ]; }; then
  echo "SKIP: the JVM is ${jvm_bits}-bit, the library is not"
  exit 77
fi

rm -rf "$work"
mkdir -p "$work/classes"
"$JAVAC" -d "$work/classes" $(find "$here/com" -name '*.java')

# A sanitized library needs its run-time loaded first, and the JVM's own
# use of signals and memory left alone.
if [ "${RONDO_SANITIZE:-0}" = 1 ]; then
  runtime=$(ldd "$library" | awk '/libasan/ {print $3}')
  if [ -z "$runtime" ]; then
    runtime=$("${CXX:-c++}" -print-file-name=libclang_rt.asan-x86_64.so)
  fi
  # The C++ run-time too: the sanitizer finds the real exception throw only
  # in libraries that are there when it starts, and java itself has none.
  cxxrt=$(ldd "$library" | awk '/libstdc\+\+/ {print $3}')
  export LD_PRELOAD="$runtime${cxxrt:+:$cxxrt}"
  export ASAN_OPTIONS=handle_segv=0:allow_user_segv_handler=1:detect_leaks=0:use_sigaltstack=0
fi

# Runs the host with the given commands; leaves stdout in $work/out and the
# exit code in $status.
run_host() {
  set +e
  (cd "$work" && "$JAVA" -Xshare:off -Djava.library.path="$(dirname "$library")" -cp classes \
     "com.nyx.orda.business.io.protocols.rondo.${host_class:-RondoHost}" "$@") >"$work/out" 2>"$work/err"
  status=$?
  set -e
  sed -i -E 's#Address:[^ "]*#Address:-#; s# -build [0-9]+([ "])# -build -\1#' "$work/out"
}

expect_output() {
  local want_status=$1
  printf '%s' "$2" >"$work/expected"
  if ! cmp -s "$work/expected" "$work/out"; then
    echo "--- expected / +++ actual standard output:" >&2
    diff -u "$work/expected" "$work/out" >&2 || true
    echo "--- standard error:" >&2
    cat "$work/err" >&2
    fail "standard output differs"
  fi
  [ "$status" = "$want_status" ] || { cat "$work/err" >&2; fail "exit code $status, expected $want_status"; }
}

banner='====================== EXCEPTION TRACEBACK ======================='
rule='=================================================================='
report() {  # reason, method
  printf '\n\n%s\n%s\n   (Method=%s)\n%s\n' "$banner" "$1" "$2" "$rule"
}

unset RONDO_UNITTEST_STORES FS_CLUSTERS CAPI_DISABLERONDODATASERVER SP_CAPI_DATASERVER SP_DATASERVER_ROOT
export SP_DATASERVER_BACKEND=UnitTest
[ -n "${VSERVER:-}" ] || fail "VSERVER must name the DataServer program"
# The server logs to its home directory.
export HOME="$work"
# A server on this host is reached by its name as the system gives it.
this_host=$(hostname)
this_host=${this_host%%.*}
started() {  # server name: the line printed when the server is started
  printf 'Executing "%s Rondo Address:- -build -" on %s\n' "$VSERVER" "$1"
}
# The server is a name of its own, on the cluster of this machine.
export FS_CLUSTERS="seisserver=$this_host"

# Compares $work/got, the lines of the output a scenario keeps, with
# $work/expected, and the exit code with $1; $2 says what differs.
expect_got() {
  if ! cmp -s "$work/expected" "$work/got"; then
    diff -u "$work/expected" "$work/got" | cut -c1-200 >&2 || true
    cat "$work/err" >&2
    fail "$2"
  fi
  [ "$status" = "$1" ] || fail "exit code $status, expected $1"
}

# The sample project that python3-segyio writes, served by the directory
# back end; the format files name their keys in the Kelp vocabulary, which
# the server reads from the release's system files.
segy_project() {
  py=/usr/bin/python3
  "$py" -c 'import segyio' 2>/dev/null || fail "python3-segyio is missing: scripts/install-deps installs it"
  root=$work/root
  "$here/../scripts/segy-sample-project" "$root" survey || fail "the sample project could not be written"
  VREL=$(cd "$here/../release" && pwd)
  export SP_DATASERVER_BACKEND=directory SP_DATASERVER_ROOT=$root VREL
  host_class=RondoDataHost
}

case "$scenario" in
  server)
    export RONDO_UNITTEST_STORES="line12.3:seismic wells.1:well:log grid_a.2:seismic line12.4:seismic"
    export SP_DATASERVER_TRACE=1
    run_host connect SeisServer connect SeisServer connect SEISSERVER project SeisServer survey \
      contents SeisServer survey - contents SeisServer survey Seismic contents SeisServer survey horizon \
      contents-without-append SeisServer survey -
    # One call answers false: the sink without append.
    expect_output 1 "$(started "$this_host")
RondoOpenConnection(\"SeisServer\") = true
RondoOpenConnection(\"SeisServer\") = true
RondoOpenConnection(\"SEISSERVER\") = true
RondoOpenProject(\"SeisServer\", \"survey\") = true
append(line12)
append(wells)
append(grid_a)
append(line12)
RondoGetContents(\"SeisServer\", \"survey\", \"\") stores=4 = true
append(line12)
append(grid_a)
append(line12)
RondoGetContents(\"SeisServer\", \"survey\", \"Seismic\") stores=3 = true
RondoGetContents(\"SeisServer\", \"survey\", \"horizon\") stores=0 = true
RondoGetContents(\"SeisServer\", \"survey\", \"\") = false
"
    grep -q ' request 2 code 98$' "$work/DataServer.Rondo" || fail "the server's log has no open of the project"
    ;;
  data)
    [ -n "${DEMOSTORES:-}" ] || fail "DEMOSTORES must name the DemoStores program"
    mkdir -p "$work/stores"
    "$DEMOSTORES" "$work/stores" || fail "DemoStores could not write the stores"
    s=$work/stores
    export RONDO_UNITTEST_STORES="line12.1:seismic:2d:$s/line12.store tops.1:horizon::$s/tops.store \
slices.1:seismic:timeslice:$s/slices.store"
    # The grid of a time slice takes its position attributes from the
    # vocabulary, found in the working directory when no release is set.
    mkdir -p "$work/SystemFiles"
    cp "$here/../release/SystemFiles/AttributeDefTable4.txt" "$work/SystemFiles/"
    host_class=RondoDataHost
    run_host connect SeisServer project SeisServer survey \
      datainfo SeisServer survey line12 datainfo SeisServer survey tops datainfo SeisServer survey slices \
      sumi SeisServer survey line12 CDP 6 sumi SeisServer survey line12 STATIC 8 \
      sumf SeisServer survey line12 AMP.RMS -1 -1 6 sumf SeisServer survey line12 TRACE 0 6 48 \
      sumf SeisServer survey line12 TRACE 4 2 16 sumtab SeisServer survey line12 TRACE 16 5,0 \
      sumf SeisServer survey tops DEPTH -1 -1 4 \
      sumf SeisServer survey line12 CDP 0 2 16 sumi SeisServer survey line12 CDP 5
    # The line: key and attribute statistics, the trace layout; the map by
    # its property; the slice as a grid of 3 inlines by 2 crosslines. Sums
    # and CRC-32s of the arrays: all traces, traces 5 and 6, traces 6 and 1
    # by index; two loads answer false.
    expect_output 2 "$(started "$this_host")
RondoOpenConnection(SeisServer) = true
RondoOpenProject(SeisServer, survey) = true
setNbElements(6)
+++++KEY Attribute is: CDP
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(CDP, 0.0, 0.0)
addKeyAttributeName(CDP, 1)
+++++KEY Attribute is: OFFSET
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(OFFSET, 0.0, 0.0)
addKeyAttributeName(OFFSET, 1)
+++++PRIMARY KEY is: CDP
+++++SECONDARY KEY is: OFFSET
setProperty(Primary Key, CDP)
setProperty(Secondary Key, OFFSET)
++++Attribute is: AMP.RMS
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(AMP.RMS, 0.0, 0.0)
addAttributeName(AMP.RMS, 2)
++++Attribute is: CDP
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(CDP, 0.0, 0.0)
addAttributeName(CDP, 1)
++++Attribute is: OFFSET
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(OFFSET, 0.0, 0.0)
addAttributeName(OFFSET, 1)
++++Attribute is: STATIC
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(STATIC, 0.0, 0.0)
addAttributeName(STATIC, 2)
================== Length: 8
setProperty(Length, 8)
setProperty(SampleRate, 4.000000)
setProperty(FirstTime, 0.000000)
RondoGetDataInfo(line12) = true
setNbElements(4)
addKeyAttributeName(XVAL, 1)
addKeyAttributeName(YVAL, 1)
addAttributeName(DEPTH, 2)
RondoGetDataInfo(tops) = true
setNbElements(6)
addKeyAttributeName(CROSSLINE, 1)
addKeyAttributeName(INLINE, 1)
addAttributeName(AMPLITUDE.000100, 2)
RondoGetDataInfo(slices) = true
RondoLoadAttributeI(line12, CDP) n=6 sum=621 crc=3464a7ea = true
RondoLoadAttributeI(line12, STATIC) n=8 sum=7 crc=c016178b = true
RondoLoadAttributeF(line12, AMP.RMS, -1, -1) n=6 sum=5.25 crc=4b89b5a0 = true
RondoLoadAttributeF(line12, TRACE, 0, 6) n=48 sum=1764.0 crc=ad20d669 = true
RondoLoadAttributeF(line12, TRACE, 4, 2) n=16 sum=908.0 crc=823f6132 = true
RondoLoadAttributeFromTabindexF(line12, TRACE, 5,0) n=16 sum=588.0 crc=004ce1f8 = true
RondoLoadAttributeF(tops, DEPTH, -1, -1) n=4 sum=4875.0 crc=eddc0098 = true
RondoLoadAttributeF---------- Trace index != TRACE not yet implemented!!!!!!!!!!!!!!!!!!!!!!! 
RondoLoadAttributeF(line12, CDP, 0, 2) n=16 sum=0.0 crc=758d6336 = false
RondoLoadAttributeI---------- The array holds 5 values, 6 are needed!!!!!!!!!!!
RondoLoadAttributeI(line12, CDP) n=5 sum=0 crc=0fd59b8d = false
"
    ;;
  nostore)
    export RONDO_UNITTEST_STORES="line12.3:seismic:2d"
    host_class=RondoDataHost
    run_host connect SeisServer project SeisServer survey datainfo SeisServer survey line13
    expect_output 255 "$(started "$this_host")
RondoOpenConnection(SeisServer) = true
RondoOpenProject(SeisServer, survey) = true
Can't open project
Reason: 'Server said:-o Store line13 version 0 is not in project survey. in method 'COBPortal::myMessage'
"
    ;;
  refused)
    export SP_DATASERVER_BACKEND=Nonsense
    run_host connect SeisServer project SeisServer survey
    expect_output 2 "$(started "$this_host")
$(report "Server said:-o The DataServer BACKEND 'Nonsense' is not a project type." 'COBPortal::myMessage')
Unable to Open Connection!!!!!!!!!!!
RondoOpenConnection(\"SeisServer\") = false
$(report 'Trying to get a NULL pointer' 'vHandle::get()')
Unable to Open Project!!!!!!!!!!!
RondoOpenProject(\"SeisServer\", \"survey\") = false
"
    ;;
  order)
    export RONDO_UNITTEST_STORES="line12.3"
    export FS_CLUSTERS="localhost=$this_host"
    # A project asked for before its connection leaves an empty catalog in
    # the map under that spelling, which the connection then finds; another
    # spelling of the server connects. Contents of a project never opened
    # end the host with the report.
    run_host project localhost survey connect localhost project localhost survey \
      connect LocalHost project LocalHost survey contents LocalHost survey - \
      contents localhost survey -
    expect_output 255 "$(report 'Trying to get a NULL pointer' 'vHandle::get()')
Unable to Open Project!!!!!!!!!!!
RondoOpenProject(\"localhost\", \"survey\") = false
RondoOpenConnection(\"localhost\") = true
$(report 'Trying to get a NULL pointer' 'vHandle::get()')
Unable to Open Project!!!!!!!!!!!
RondoOpenProject(\"localhost\", \"survey\") = false
$(started "$this_host")
RondoOpenConnection(\"LocalHost\") = true
RondoOpenProject(\"LocalHost\", \"survey\") = true
append(line12)
RondoGetContents(\"LocalHost\", \"survey\", \"\") stores=1 = true
$(report 'Trying to get a NULL pointer' 'vHandle::get()')
"
    ;;
  segyio)
    segy_project
    log=$work/DataServer.Rondo
    # The first server's process id is the first word of its log.
    kill_server='pid=$(awk "NR==1 {print \$1}" "$HOME/DataServer.Rondo"); kill -9 $pid;
      for i in $(seq 100); do kill -0 $pid 2>/dev/null || break; sleep 0.05; done'
    infos="datainfo line1 datainfo line2"
    loads="bitsf line1 TRACE 0 10 230 bitsf line1 TRACE 10 30 690 bitsi line1 CMP 40 bitsi line1 TRACE_NUMBER 40"
    after_kill="bitsf line1 TRACE 35 5 115 bitsi line1 CMP 40 bitsf line2 TRACE 0 20 460"
    s="SeisServer survey"
    with_server() { local out=() c; for c in "$@"; do out+=("$c"); [[ $c = bits? || $c = datainfo ]] && out+=(SeisServer survey); done; echo "${out[@]}"; }
    # What segyio reads, in the host's words, before the host cuts a file.
    expected=$("$py" - "$root/survey" $infos $loads $after_kill <<'PY'
import struct, sys, segyio
where, words = sys.argv[1], sys.argv[2:]
fields = {"CMP": segyio.TraceField.CDP, "TRACE_NUMBER": segyio.TraceField.TRACE_SEQUENCE_LINE}
while words:
    kind, store = words[0], words[1]
    with segyio.open(f"{where}/{store}.sgy", ignore_geometry=True) as f:
        if kind == "datainfo":
            # The keys of the format file, the attributes in its order and
            # then the trace; a SEG-Y file carries no statistics.
            words = words[2:]
            print(f"setNbElements({f.tracecount})")
            for key in ("CDP", "TRACE_NUMBER"):
                print(f"+++++KEY Attribute is: {key}\n+++++Stats on Attribute is :0,0\n"
                      f"addStatisticOnAttribute({key}, 0.0, 0.0)\naddKeyAttributeName({key}, 1)")
            print("+++++PRIMARY KEY is: CDP\n+++++SECONDARY KEY is: TRACE_NUMBER\n"
                  "setProperty(Primary Key, CDP)\nsetProperty(Secondary Key, TRACE_NUMBER)")
            for name in ("CDP", "TRACE_NUMBER", "CMP"):
                print(f"++++Attribute is: {name}\n+++++Stats on Attribute is :0,0\n"
                      f"addStatisticOnAttribute({name}, 0.0, 0.0)\naddAttributeName({name}, 1)")
            print(f"================== Length: {len(f.samples)}\nsetProperty(Length, {len(f.samples)})\n"
                  f"setProperty(SampleRate, {segyio.tools.dt(f) / 1000:f})\n"
                  f"setProperty(FirstTime, {f.samples[0]:f})\nRondoGetDataInfo({store}) = true")
            continue
        name = words[2]
        if kind == "bitsi":
            size = int(words[3]); words = words[4:]
            v = list(f.attributes(fields[name])[:]) + [0] * size
            print(f"RondoLoadAttributeI({store}, {name}) n={size} " + " ".join(str(x) for x in v[:size]) + " = true")
        else:
            first, count, size = map(int, words[3:6]); words = words[6:]
            v = [x for t in range(first, first + count) for x in f.trace[t]] + [0.0] * size
            print(f"RondoLoadAttributeF({store}, {name}, {first}, {count}) n={size} " +
                  " ".join(struct.pack(">f", x).hex() for x in v[:size]) + " = true")
PY
)
    # shellcheck disable=SC2046
    run_host connect SeisServer project $s contents $s - contents $s seismic contents $s horizon \
      $(with_server $infos $loads) run "$kill_server" $(with_server $after_kill) \
      run "truncate -s 10000 $root/survey/line2.sgy" bitsf $s line2 TRACE 30 10 230
    {
      echo "RondoOpenConnection(SeisServer) = true"
      echo "RondoOpenProject(SeisServer, survey) = true"
      echo "RondoGetContents(survey, -) [gathers2d, horizon, line1, line2, near, shot, velocity, wells] = true"
      echo "RondoGetContents(survey, seismic) [gathers2d, line1, line2, near, shot] = true"
      echo "RondoGetContents(survey, horizon) [horizon] = true"
      echo "$expected"
    } >"$work/expected"
    # A failed load ends the host, as the data natives do.
    grep -E '^(Rondo|setNbElements|add|setProperty|\+\+|=+ Length)' "$work/out" >"$work/got"
    expect_got 255 "the host's values differ from segyio's"
    # A new server after the kill; the cut file gives the store's own error
    # and the server answers the next message after it.
    [ "$(grep -c ' serving Rondo at ' "$log")" = 2 ] || fail "the server was not started again after the kill"
    grep -qx 'Server said:-o Failed to read instance 31' "$work/out" || { cat "$work/out" >&2; fail "no report of the cut file"; }
    sed -n '/ request to [0-9]* failed: Failed to read instance 31$/,$p' "$log" | grep -q ' destroy [0-9]*$' ||
      { tail -3 "$log" >&2; fail "the server did not go on after the failure"; }
    # A line without a format file has the one key "CMP": the mapping
    # program's data info needs two, and the host ends with the reason.
    cp "$root/survey/line1.sgy" "$root/survey/plain.sgy"
    run_host connect SeisServer project $s datainfo $s plain
    expect_output 255 "Executing \"$VSERVER Rondo Address:- -build - -v $VREL\" on $this_host
RondoOpenConnection(SeisServer) = true
RondoOpenProject(SeisServer, survey) = true
setNbElements(40)
+++++KEY Attribute is: CMP
+++++Stats on Attribute is :0,0
addStatisticOnAttribute(CMP, 0.0, 0.0)
addKeyAttributeName(CMP, 1)
$(report 'Data set plain has 1 key attributes; a primary and a secondary are needed.' RondoGetDataInfo)
"
    ;;
  mapping)
    segy_project
    cat >"$root/survey/line1.cstf" <<'MAP'
# The sample line through a mapping: a mid point, and bits of the CDP.
MID:d = CDP / 2 + TRACE_NUMBER * 0.25 - 1
SHIFT:i = (CDP << 2) | (TRACE_NUMBER & 3)
!ADD CDP TRACE_NUMBER TRACE
MAP
    s="SeisServer survey"
    run_host connect SeisServer project $s bitsf $s line1 MID -1 -1 40 bitsi $s line1 SHIFT 40 \
      bitsi $s line1 CDP 40 bitsf $s line1 TRACE 3 2 46
    expected=$("$py" - "$root/survey/line1.sgy" <<'PY'
import struct, sys, segyio
with segyio.open(sys.argv[1], ignore_geometry=True) as f:
    cdp = [int(v) for v in f.attributes(segyio.TraceField.CDP)[:]]
    tracl = [int(v) for v in f.attributes(segyio.TraceField.TRACE_SEQUENCE_LINE)[:]]
    bits = lambda values: " ".join(struct.pack(">f", v).hex() for v in values)
    print("RondoLoadAttributeF(line1, MID, -1, -1) n=40 " +
          bits([c / 2 + t * 0.25 - 1 for c, t in zip(cdp, tracl)]) + " = true")
    print("RondoLoadAttributeI(line1, SHIFT) n=40 " +
          " ".join(str((c << 2) | (t & 3)) for c, t in zip(cdp, tracl)) + " = true")
    print("RondoLoadAttributeI(line1, CDP) n=40 " + " ".join(map(str, cdp)) + " = true")
    print("RondoLoadAttributeF(line1, TRACE, 3, 2) n=46 " + bits(list(f.trace[3]) + list(f.trace[4])) + " = true")
PY
)
    grep '^Rondo' "$work/out" >"$work/got"
    printf 'RondoOpenConnection(SeisServer) = true\nRondoOpenProject(SeisServer, survey) = true\n%s\n' \
      "$expected" >"$work/expected"
    expect_got 0 "the host's values differ from those worked out from segyio's"
    ;;
  zon)
    [ -x "${KVSD:-}" ] || fail "KVSD must name the kvsd program"
    [ -x "${ZONLOAD:-}" ] || fail "ZONLOAD must name the zonload program"
    # A release tree of the test's own: the system files of the checkout, a
    # site configuration whose default database is "zonsite", and that
    # server's client folder. The library sets KVSROOT, KVSPROJ and KVSDICT
    # itself; what the caller had is not seen here, and is back after this
    # script.
    unset KVSROOT KVSPROJ KVSDICT
    rel=$work/rel
    mkdir -p "$rel/SystemFiles" "$rel/SupportFiles/CapiZon/zonsite" "$work/kvsd" "$work/tmp"
    cp "$here/../release/SystemFiles/"* "$rel/SystemFiles/"
    printf '[aliases]\nzondemo.example = zonsite\n[zonsite]\nProductionDatabase = kvs1\n' \
      >"$rel/SystemFiles/DatabaseConfig.ini"
    export VREL=$rel/ DORN_DOMAIN=zondemo.example TMPDIR=$work/tmp
    "$KVSD" -d "$work/kvsd" -p 0 >"$work/kvsd.port" 2>"$work/kvsd.err" &
    kvsd_pid=$!
    trap 'kill -9 $kvsd_pid 2>/dev/null || true' EXIT
    for _ in $(seq 100); do [ -s "$work/kvsd.port" ] && break; sleep 0.05; done
    KVSPORT=$(head -1 "$work/kvsd.port")
    [ -n "$KVSPORT" ] || fail "kvsd did not start"
    export KVSPORT
    "$ZONLOAD" dictionary "$rel/SupportFiles/CapiZon/zonsite" 127.0.0.1 || fail "zonload dictionary"
    "$ZONLOAD" table zonsite Survey7 LINE1 40 >"$work/zonload.out" 2>&1 || fail "zonload table LINE1"
    "$ZONLOAD" table zonsite Survey7 LINE2 8 >>"$work/zonload.out" 2>&1 || fail "zonload table LINE2"
    export SP_DATASERVER_BACKEND=Zonmesh
    host_class=RondoDataHost
    s="SeisServer survey7"
    # CDP is 1000 + row and OFFSET 100 * (row % 4): CDP of 40 rows sums to
    # 40820. The daemon is killed between two loads.
    run_host connect SeisServer project $s contents $s - contents $s table contents $s seismic \
      datainfo $s line1,tab sumi $s line1,tab CDP 40 \
      bitsi $s line1,tab OFFSET 40 run "kill -9 $kvsd_pid" bitsi $s line2,tab CDP 8
    grep -E '^(Rondo|setNbElements|add|setProperty|Reason)' "$work/out" >"$work/got"
    offsets=$(for row in $(seq 40); do printf ' %d' $((100 * (row % 4))); done)
    {
      echo "RondoOpenConnection(SeisServer) = true"
      echo "RondoOpenProject(SeisServer, survey7) = true"
      echo "RondoGetContents(survey7, -) [line1,tab, line2,tab] = true"
      echo "RondoGetContents(survey7, table) [line1,tab, line2,tab] = true"
      echo "RondoGetContents(survey7, seismic) [] = true"
      echo "setNbElements(40)"
      echo "addStatisticOnAttribute(CDP, 0.0, 0.0)"
      echo "addKeyAttributeName(CDP, 1)"
      echo "addStatisticOnAttribute(OFFSET, 0.0, 0.0)"
      echo "addKeyAttributeName(OFFSET, 1)"
      echo "setProperty(Primary Key, CDP)"
      echo "setProperty(Secondary Key, OFFSET)"
      echo "addStatisticOnAttribute(CDP, 0.0, 0.0)"
      echo "addAttributeName(CDP, 1)"
      echo "addStatisticOnAttribute(ELEV, 0.0, 0.0)"
      echo "addAttributeName(ELEV, 2)"
      echo "addStatisticOnAttribute(OFFSET, 0.0, 0.0)"
      echo "addAttributeName(OFFSET, 1)"
      echo "RondoGetDataInfo(line1,tab) = true"
      echo "RondoLoadAttributeI(line1,tab, CDP) n=40 sum=40820 crc=a054d851 = true"
      echo "RondoLoadAttributeI(line1,tab, OFFSET) n=40$offsets = true"
      echo "Reason: 'Server said:-o Error opening store line2,tab:%E Could not receive data from server on 127.0.0.1 in method 'COBPortal::myMessage'"
    } >"$work/expected"
    expect_got 255 "the host's view of the database differs"
    # The daemon gone when the project is opened: the server's report, and
    # the open answers false.
    run_host connect SeisServer project $s
    grep -qxF "Server said:-o Unable to initialise KVS:  Server='zonsite'  Project='dummy'  error=9 '%S Could not find kvsd server (PORT $KVSPORT) on 127.0.0.1'  KVSROOT='${rel}/SupportFiles/CapiZon/zonsite'" "$work/out" ||
      { cat "$work/out" >&2; fail "no report of the unreachable daemon"; }
    grep -qx 'RondoOpenProject(SeisServer, survey7) = false' "$work/out" || fail "the project was opened"
    [ "$status" = 1 ] || fail "exit code $status, expected 1"
    ;;
  *)
    fail "unknown scenario $scenario"
    ;;
esac
echo "$scenario: standard output and exit code as expected"
