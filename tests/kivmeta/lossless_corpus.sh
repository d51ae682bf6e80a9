#!/usr/bin/env bash
# End-to-end check of lossless saving: `kivmeta --set photoshop:Headline=Lossless FILE`
# either changes exactly that property (and may set xmp:MetadataDate), or refuses the
# file with "kivmeta: cannot write FILE: REASON", exit status 1, and leaves it
# byte-identical.  The corpus is copied from Debian packages and made with exiftool
# in a temporary folder at run time; nothing is kept.
#
# Usage: lossless_corpus.sh /path/to/kivmeta
# Needs exiftool (skips without it), python3, cmp, setpriv; the corpus needs the
# packages that scripts/install-deps.sh installs.

set -u -o pipefail

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 /path/to/kivmeta" >&2
    exit 2
fi
KIVMETA=$(readlink -f -- "$1")

if ! command -v exiftool >/dev/null 2>&1; then
    echo "skipped: exiftool is not installed (Debian package libimage-exiftool-perl)"
    echo "0 passed, 0 failed"
    exit 0
fi

export LC_ALL=C.UTF-8
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}

WORK=$(mktemp -d "${TMPDIR:-/tmp}/kivmeta-lossless.XXXXXX")
cleanup() {
    # One exiftool serves the whole run; read-only folders made below must not stop the clean-up.
    # (exiftool -stay_open keeps polling a closed input: it must be told, or stopped.)
    # bash unsets ETOOL and ETOOL_PID when the coprocess ends: EXIFTOOL_PID keeps the id.
    if [ -n "${EXIFTOOL_PID:-}" ]; then
        [ -z "${ETOOL[1]:-}" ] || printf '%s\n' -stay_open False >&"${ETOOL[1]}" 2>/dev/null
        local i
        for i in 1 2 3 4 5 6 7 8 9 10; do kill -0 "$EXIFTOOL_PID" 2>/dev/null || break; sleep 0.2; done
        kill "$EXIFTOOL_PID" 2>/dev/null
        wait "$EXIFTOOL_PID" 2>/dev/null
    fi
    chmod -R u+rwX "$WORK" 2>/dev/null
    rm -rf "$WORK"
}
trap cleanup EXIT
trap 'exit 130' INT TERM HUP   # a stopped run (ctest's time limit) cleans up too
chmod 755 "$WORK"   # another user runs kivmeta in the read-only folder case

# kivmeta keeps preferences and lists in the per-user folders: keep them here.
export HOME=$WORK/home XDG_CONFIG_HOME=$WORK/home/config XDG_DATA_HOME=$WORK/home/data \
       XDG_CACHE_HOME=$WORK/home/cache XDG_RUNTIME_DIR=$WORK/home/runtime
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"

HEADLINE=Lossless
PASSED=0
FAILED=0
CASE_NO=0

pass() { PASSED=$((PASSED + 1)); echo "PASS $1${2:+: $2}"; }
fail() { FAILED=$((FAILED + 1)); echo "FAIL $1: $2"; }
# Indented detail lines under a case.
detail() { sed -e 's/ | /\n      /g' | sed -e 's/^/    /' | cut -c1-240; }

############################################################################
# The helper: builds the files exiftool cannot start from, and compares.
############################################################################
HELPER=$WORK/helper.py
cat >"$HELPER" <<'PYTHON'
import base64, json, struct, sys, zlib

W = H = 16

def write(path, data):
    with open(path, 'wb') as f:
        f.write(data)

def rgb(x, y):
    return bytes((x * 16, y * 16, 128))

def make_png(path):
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
    rows = b''.join(b'\0' + b''.join(rgb(x, y) for x in range(W)) for y in range(H))
    write(path, b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', W, H, 8, 2, 0, 0, 0))
          + chunk(b'IDAT', zlib.compress(rows)) + chunk(b'IEND', b''))

def make_tiff(path, dng):
    """Uncompressed RGB strip; with dng, the tags that make it a DNG."""
    pixels = b''.join(rgb(x, y) for y in range(H) for x in range(W))
    extra = bytearray()
    entries = {256: (3, 1, W), 257: (3, 1, H), 258: (3, 3, 'bps'), 259: (3, 1, 1), 262: (3, 1, 2),
               273: (4, 1, 'pixels'), 277: (3, 1, 3), 278: (3, 1, H), 279: (4, 1, len(pixels))}
    if dng:
        entries[254] = (4, 1, 0)
        entries[50706] = (1, 4, 'dngversion')
        entries[50708] = (2, 16, 'model')
    ifd_size = 2 + 12 * len(entries) + 4
    base = 8 + ifd_size
    offsets = {'bps': base + len(extra)}
    extra += struct.pack('<3H', 8, 8, 8)
    offsets['model'] = base + len(extra)
    extra += b'Kiv Test Camera\0' if dng else b''
    offsets['pixels'] = base + len(extra)
    out = bytearray(b'II*\0' + struct.pack('<I', 8) + struct.pack('<H', len(entries)))
    for tag in sorted(entries):
        kind, count, value = entries[tag]
        if value == 'dngversion':
            out += struct.pack('<HHI', tag, kind, count) + bytes((1, 4, 0, 0))
            continue
        if isinstance(value, str):
            value = offsets[value]
        if kind == 3 and count == 1:
            out += struct.pack('<HHIHH', tag, kind, count, value, 0)
        else:
            out += struct.pack('<HHII', tag, kind, count, value)
    out += struct.pack('<I', 0) + extra + pixels
    write(path, bytes(out))

def make_psd(path):
    header = b'8BPS' + struct.pack('>H6xHIIHH', 1, 3, H, W, 8, 3)
    planes = bytes((x * 16, y * 16, 128)[c] for c in range(3) for y in range(H) for x in range(W))
    write(path, header + struct.pack('>III', 0, 0, 0) + struct.pack('>H', 0) + planes)

def make_bmp(path):
    rows = b''.join(b''.join(rgb(x, y)[::-1] for x in range(W)) for y in range(H))
    info = struct.pack('<IiiHHIIiiII', 40, W, H, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    write(path, b'BM' + struct.pack('<IHHI', 54 + len(rows), 0, 0, 54) + info + rows)

def make_mp4(path):
    def box(kind, data):
        return struct.pack('>I', 8 + len(data)) + kind + data
    mvhd = (struct.pack('>I', 0) + struct.pack('>IIII', 0, 0, 1000, 0) + struct.pack('>IH', 0x10000, 0x100)
            + b'\0' * 10 + struct.pack('>9I', 0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x40000000)
            + b'\0' * 24 + struct.pack('>I', 2))
    write(path, box(b'ftyp', b'isom' + struct.pack('>I', 512) + b'isomiso2mp41')
          + box(b'moov', box(b'mvhd', mvhd)) + box(b'free', b'\0' * 64) + box(b'mdat', b''))

def make_pgm(path):
    write(path, b'P5\n%d %d\n255\n' % (W, H) + bytes((x * 8 + y * 8) % 256 for y in range(H) for x in range(W)))

def make_webp(path):
    # The smallest lossless WebP: one pixel.
    write(path, base64.b64decode('UklGRhoAAABXRUJQVlA4TA0AAAAvAAAAEAcQERGIiP4HAA=='))

PACKET_BODY = '''<x:xmpmeta xmlns:x="adobe:ns:meta/" x:xmptk="Hand written 1.0">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about="uuid:3f2504e0-4f89-11d3-9a0c-0305e82c3301"
    xmlns:dc="http://purl.org/dc/elements/1.1/"
    xmlns:xmp="http://ns.adobe.com/xap/1.0/"
    xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/"
    xmlns:Iptc4xmpCore="http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/"
    xmlns:exif="http://ns.adobe.com/exif/1.0/"
    xmlns:tiff="http://ns.adobe.com/tiff/1.0/"
    xmlns:kivtest="http://example.org/kivtest/1.0/"
    photoshop:City="Bergen"
    tiff:Make="PacketMake"
    tiff:Orientation="6"
    exif:DateTimeOriginal="1999-12-31T23:59:58"
    exif:PixelXDimension="100">
   <dc:title>
    <rdf:Alt>
     <rdf:li xml:lang="x-default">Fjord</rdf:li>
     <rdf:li xml:lang="de">Fjord auf Deutsch</rdf:li>
     <rdf:li xml:lang="fr">Fjord en fran\u00e7ais</rdf:li>
    </rdf:Alt>
   </dc:title>
   <dc:creator>
    <rdf:Seq>
     <rdf:li rdf:parseType="Resource">
      <rdf:value>Ada Lovelace</rdf:value>
      <kivtest:role>photographer</kivtest:role>
     </rdf:li>
     <rdf:li>Charles Babbage</rdf:li>
    </rdf:Seq>
   </dc:creator>
   <dc:subject>
    <rdf:Bag>
     <rdf:li>fjord</rdf:li>
     <rdf:li>Bergen</rdf:li>
    </rdf:Bag>
   </dc:subject>
   <Iptc4xmpCore:CreatorContactInfo rdf:parseType="Resource"/>
   <exif:Flash rdf:parseType="Resource">
    <exif:Fired>False</exif:Fired>
    <exif:Mode>2</exif:Mode>
   </exif:Flash>
   <kivtest:Empty/>
   <kivtest:EmptyBag><rdf:Bag/></kivtest:EmptyBag>
  </rdf:Description>
 </rdf:RDF>
</x:xmpmeta>
'''

def packet(padding):
    text = '<?xpacket begin="\ufeff" id="W5M0MpCehiHzreSzNTczkc9d"?>\n' + PACKET_BODY
    text += (' ' * 99 + '\n') * (padding // 100)
    return (text + '<?xpacket end="w"?>').encode('utf-8')

def make_svg(path):
    svg = ('<?xml version="1.0" encoding="UTF-8"?>\n'
           '<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">\n'
           ' <title>Kiv test</title>\n <metadata>\n').encode() + packet(2000) + \
          b'\n </metadata>\n <rect width="16" height="16" fill="#3366cc"/>\n</svg>\n'
    write(path, svg)

XMP_SIG = b'http://ns.adobe.com/xap/1.0/\0'
EXT_SIG = b'http://ns.adobe.com/xmp/extension/\0'

def jpeg_segments(data):
    """(marker, payload) list up to SOS, and the bytes from SOS on; None if not parsable."""
    if data[:2] != b'\xff\xd8':
        return None
    i, segs = 2, []
    while i + 4 <= len(data):
        if data[i] != 0xff:
            return None
        marker = data[i + 1]
        if marker == 0xff:
            i += 1
            continue
        length = struct.unpack('>H', data[i + 2:i + 4])[0]
        if marker == 0xda:
            return segs, data[i:]
        if i + 2 + length > len(data):
            return None
        segs.append((marker, data[i + 4:i + 2 + length]))
        i += 2 + length
    return None

def png_chunks(data):
    if data[:8] != b'\x89PNG\r\n\x1a\n':
        return None
    i, chunks = 8, []
    while i + 12 <= len(data):
        length = struct.unpack('>I', data[i:i + 4])[0]
        chunks.append((data[i + 4:i + 8], data[i + 8:i + 8 + length]))
        i += 12 + length
    return chunks

def cmd_malformed(src, dst):
    """A JPEG whose XMP packet is not well-formed XML."""
    data = open(src, 'rb').read()
    xml = (b'<?xpacket begin="\xef\xbb\xbf" id="W5M0MpCehiHzreSzNTczkc9d"?><x:xmpmeta xmlns:x="adobe:ns:meta/">'
           b'<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about="" '
           b'xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:title><rdf:Alt><rdf:li xml:lang="x-default">Broken'
           b'</rdf:li></rdf:Alt></dc:title><dc:format>image/jpeg</rdf:Description></rdf:RDF></x:xmpmeta>'
           + b' ' * 1000 + b'<?xpacket end="w"?>')
    payload = XMP_SIG + xml
    write(dst, data[:2] + b'\xff\xe1' + struct.pack('>H', len(payload) + 2) + payload + data[2:])

def cmd_cut_in_xmp(src, dst):
    """The file cut in the middle of its XMP segment."""
    data = open(src, 'rb').read()
    at = data.find(XMP_SIG)
    if at < 0:
        sys.exit('no XMP segment in ' + src)
    length = struct.unpack('>H', data[at - 2:at])[0]
    write(dst, data[:at + length // 2])

def cmd_packet(dst, padding):
    write(dst, packet(int(padding)))

def cmd_container(before_path, after_path):
    """Everything but the XMP must be byte-identical, in the same order."""
    before, after = open(before_path, 'rb').read(), open(after_path, 'rb').read()
    if before[:2] == b'\xff\xd8':
        b, a = jpeg_segments(before), jpeg_segments(after)
        if b is None:
            return  # the original is damaged: the exiftool comparison judges it
        if a is None:
            print('the written JPEG cannot be parsed')
            return
        keep = lambda segs: [s for s in segs if not (s[0] == 0xe1 and s[1].startswith((XMP_SIG, EXT_SIG)))]
        names = lambda segs: ' '.join('APP%d' % (m - 0xe0) if 0xe0 <= m <= 0xef else 'FF%02X' % m for m, _ in segs)
        if keep(b[0]) != keep(a[0]):
            print('JPEG segments other than XMP changed: %s -> %s' % (names(keep(b[0])), names(keep(a[0]))))
        if b[1] != a[1]:
            print('JPEG image data (from SOS on) changed')
    elif before[:8] == b'\x89PNG\r\n\x1a\n':
        b, a = png_chunks(before), png_chunks(after)
        keep = lambda chunks: [c for c in chunks if not (c[0] == b'iTXt' and c[1].startswith(b'XML:com.adobe.xmp\0'))]
        if keep(b) != keep(a):
            print('PNG chunks other than XMP changed: %s -> %s' % (
                ' '.join(c[0].decode('latin-1') for c in keep(b)), ' '.join(c[0].decode('latin-1') for c in keep(a))))

# Tags that an edit may change.  File-system tags; the edit itself; the packet's own
# bookkeeping; where the image data sits in the file.
IGNORED = {'SourceFile', 'ExifTool:ExifToolVersion', 'System:FileSize', 'System:FileModifyDate',
           'System:FileAccessDate', 'System:FileInodeChangeDate'}
MAY_CHANGE = {'XMP-xmp:MetadataDate'}
NOTED = {'XMP-x:XMPToolkit', 'XMP-xmpNote:HasExtendedXMP'}   # allowed, and reported
LAYOUT = ('StripOffsets', 'TileOffsets', 'ThumbnailOffset', 'PreviewImageStart', 'JpgFromRawStart',
          'OtherImageStart', 'MediaDataOffset')

def load(path):
    def keep_duplicates(pairs):
        out = {}
        for key, value in pairs:
            name, n = key, 2
            while name in out:
                name, n = '%s #%d' % (key, n), n + 1
            out[name] = value
        return out
    with open(path, encoding='utf-8') as f:
        text = f.read().strip()
    return json.loads(text, object_pairs_hook=keep_duplicates) if text else []

def short(value):
    if value is None:
        return '(absent)'
    text = json.dumps(value, ensure_ascii=False)
    return text if len(text) <= 70 else text[:67] + '...'

def cmd_compare(before_path, after_path, headline):
    """Prints one line per file: OK|BAD <tab> file <tab> details."""
    after_by_file = {entry['SourceFile']: entry for entry in load(after_path)}
    status = 0
    for before in load(before_path):
        name = before['SourceFile']
        after = after_by_file.get(name, {})
        problems, notes = [], []
        if after.get('XMP-photoshop:Headline') != headline:
            problems.append('XMP-photoshop:Headline is %s, not %s' % (short(after.get('XMP-photoshop:Headline')), headline))
        is_warning = lambda key: key.split(' #')[0] in ('ExifTool:Warning', 'ExifTool:Error')
        old = {v for k, v in before.items() if is_warning(k)}
        for k, v in after.items():
            if is_warning(k) and v not in old:
                problems.append('new exiftool %s: %s' % (k.split(':')[1].split(' ')[0].lower(), v))
        changed = []
        for key in sorted(set(before) | set(after)):
            if key in IGNORED or key in MAY_CHANGE or key == 'XMP-photoshop:Headline' or is_warning(key):
                continue
            if before.get(key) == after.get(key):
                continue
            if key.split(':')[-1].split(' ')[0] in LAYOUT:
                continue
            if key in NOTED:
                notes.append('%s %s -> %s' % (key, short(before.get(key)), short(after.get(key))))
                continue
            changed.append('%s: %s -> %s' % (key, short(before.get(key)), short(after.get(key))))
        if changed:
            more = ' | ... and %d more' % (len(changed) - 12) if len(changed) > 12 else ''
            problems.append('%d other tag(s) differ: | %s%s' % (len(changed), ' | '.join(changed[:12]), more))
        if problems:
            status = 1
            print('BAD\t%s\t%s' % (name, ' || '.join(problems)))
        else:
            print('OK\t%s\t%s' % (name, ('noted: ' + '; '.join(notes)) if notes else ''))
    return status

if __name__ == '__main__':
    command, args = sys.argv[1], sys.argv[2:]
    if command == 'bases':
        d = args[0]
        make_png(d + '/base.png'); make_tiff(d + '/base.tif', False); make_tiff(d + '/base.dng', True)
        make_psd(d + '/base.psd'); make_bmp(d + '/base.bmp'); make_mp4(d + '/base.mp4')
        make_pgm(d + '/base.pgm'); make_webp(d + '/base.webp'); make_svg(d + '/packet.svg')
    elif command == 'packet':
        cmd_packet(*args)
    elif command == 'malformed':
        cmd_malformed(*args)
    elif command == 'cut-in-xmp':
        cmd_cut_in_xmp(*args)
    elif command == 'container':
        cmd_container(*args)
    elif command == 'compare':
        sys.exit(cmd_compare(*args))
    else:
        sys.exit('unknown command ' + command)
PYTHON

helper() { python3 "$HELPER" "$@"; }

# One exiftool process for the whole run (starting one costs a few tenths of a second).
coproc ETOOL { exec exiftool -stay_open True -@ - 2>/dev/null; }
EXIFTOOL_PID=$ETOOL_PID

# etool ARGS...: runs one exiftool command, prints its output.  Give absolute paths.
# -q also hides exiftool's "{ready}", so a marker of our own ends each command.
etool() {
    printf '%s\n' "$@" -echo3 '{kivmeta-test-done}' -execute >&"${ETOOL[1]}"
    local line arg quiet=0
    for arg in "$@"; do [ "$arg" = -q ] && quiet=1; done
    while IFS= read -r line <&"${ETOOL[0]}"; do
        if [ "$line" = "{kivmeta-test-done}" ]; then
            [ $quiet = 1 ] || IFS= read -r line <&"${ETOOL[0]}"   # {ready}
            return 0
        fi
        printf '%s\n' "$line"
    done
    return 1
}

# Every tag of every group, raw values, structures kept, binary data in base64.
snapshot() { etool -q -q -a -G1 -s -j -struct -n -b -All "$@"; }

# et ARGS... FILE: edits FILE in place; fails when exiftool wrote nothing.
# (Never pipe etool: a pipeline runs it in a subshell, which has no coprocess.)
et() {
    local out; out=$(etool -overwrite_original "$@")
    grep -q '^ *[1-9][0-9]* image files updated' <<<"$out"
}

headline_of() { etool -q -q -s3 -XMP-photoshop:Headline "$1"; }

############################################################################
# Running kivmeta
############################################################################
RUN_AS=()        # prefix, e.g. to run as another user
EXTRA_CHECK=""   # a function check_edit also runs after the edit
FSIZE_LIMIT=""   # ulimit -f for the run, in KiB

# run_kivmeta DIR ARGS...: runs kivmeta in DIR; stdout/stderr to $S/out and $S/err.
run_kivmeta() {
    local dir=$1; shift
    (
        cd "$dir" || exit 97
        if [ -n "$FSIZE_LIMIT" ]; then ulimit -f "$FSIZE_LIMIT" || exit 98; fi
        exec "${RUN_AS[@]}" timeout -k 5 60 "$KIVMETA" "$@"
    ) >"$S/out" 2>"$S/err" </dev/null
}

describe_status() {
    case $1 in
        124) echo "timed out after 60 s" ;;
        97|98) echo "the test could not set up the run" ;;
        *) if [ "$1" -gt 128 ]; then echo "killed by SIG$(kill -l $(($1 - 128)) 2>/dev/null)"; else echo "exit status $1"; fi ;;
    esac
}

# A scratch folder per case, for the snapshots and outputs.
new_scratch() {
    CASE_NO=$((CASE_NO + 1))
    S=$WORK/scratch/$CASE_NO
    mkdir -p "$S"
}

listing() { (cd "$1" && ls -A1); }

# Appends a problem for the current case.
problem() { PROBLEMS+=("$1"); }

refusal_message() { grep -m1 '^kivmeta: cannot write ' "$S/err"; }

# finish LABEL OUTCOME: reports the case from PROBLEMS.
finish() {
    if [ ${#PROBLEMS[@]} -eq 0 ]; then
        pass "$1" "${2:-}"
    else
        fail "$1" "${2:-problems}"
        printf '%s\n' "${PROBLEMS[@]}" | detail
    fi
}

# check_written FILE...: the files carry the headline and nothing else changed.
# Uses $S/before.json, $S/after.json and the pristine copies in $S/pristine/.
check_written() {
    local line verdict name details
    helper compare "$S/before.json" "$S/after.json" "$HEADLINE" >"$S/compare" 2>"$S/compare-err"
    local rc=$?
    while IFS=$'\t' read -r verdict name details; do
        if [ "$verdict" = BAD ]; then
            problem "$(basename -- "$name"): $details"
        elif [ -n "$details" ]; then
            NOTES+=("$(basename -- "$name"): $details")
        fi
    done <"$S/compare"
    if [ $rc -ne 0 ] && ! grep -q '^BAD' "$S/compare"; then
        problem "the comparison failed: $(tail -n 1 "$S/compare-err")"
    fi
    if [ "$(grep -c '^\(OK\|BAD\)' "$S/compare")" -ne $# ]; then
        problem "exiftool read $(grep -c '^\(OK\|BAD\)' "$S/compare") of $# file(s)"
    fi
    local file
    for file in "$@"; do
        while read -r line; do problem "$(basename -- "$file"): $line"; done \
            < <(helper container "$S/pristine/$(basename -- "$file")" "$file")
    done
}

# check_edit LABEL EXPECT DIR ARG [kivmeta options]
#   EXPECT: write (must be written losslessly), refuse (must be refused untouched),
#   any (either).  Runs `kivmeta OPTIONS --set photoshop:Headline=Lossless ARG` in DIR.
check_edit() {
    local label=$1 expect=$2 dir=$3 arg=$4; shift 4
    new_scratch
    PROBLEMS=() NOTES=()
    local real; real=$(cd "$dir" && readlink -f -- "$arg")
    local folder; folder=$(dirname -- "$real")
    local linkfolder; linkfolder=$(cd "$dir" && cd -- "$(dirname -- "$arg")" && pwd -P)
    mkdir -p "$S/pristine"
    cp -p -- "$real" "$S/pristine/$(basename -- "$real")"
    local mode_before; mode_before=$(stat -c %a -- "$real")
    listing "$folder" >"$S/ls-before"
    listing "$linkfolder" >"$S/ls-link-before"
    snapshot "$real" >"$S/before.json"
    if grep -q "\"XMP-photoshop:Headline\": \"$HEADLINE\"" "$S/before.json"; then
        problem "test set-up: the file has the headline $HEADLINE already"
    fi

    run_kivmeta "$dir" "$@" --set "photoshop:Headline=$HEADLINE" "$arg"
    local rc=$?
    local outcome
    if [ $rc -eq 0 ]; then
        outcome="written"
        snapshot "$real" >"$S/after.json"
        if grep -q 'cannot write' "$S/err"; then problem "exit status 0, but stderr says: $(head -n1 "$S/err")"; fi
        check_written "$real"
        local dump; dump=$(cd "$dir" && timeout -k 5 60 "$KIVMETA" --dump "$arg" 2>&1 </dev/null)
        if ! grep -qxF "photoshop:Headline=$HEADLINE" <<<"$dump"; then
            problem "kivmeta --dump does not print photoshop:Headline=$HEADLINE (it has: $(grep -m1 '^photoshop:Headline=' <<<"$dump" || echo 'no headline'))"
        fi
        [ "$expect" = refuse ] && problem "written, but this file must be refused"
    elif [ $rc -eq 1 ]; then
        local message; message=$(refusal_message)
        outcome="refused (${message:-no message})"
        cmp -s -- "$S/pristine/$(basename -- "$real")" "$real" || problem "refused, but the file changed"
        [ -n "$message" ] || problem "exit status 1 without 'kivmeta: cannot write FILE: REASON' on stderr: $(head -c 300 "$S/err")"
        if [ -n "$message" ] && ! grep -qF -- "$(basename -- "$arg")" <<<"$message"; then
            problem "the message does not name the file: $message"
        fi
        [ "$expect" = write ] && problem "refused, but this file must be written"
    else
        outcome=$(describe_status $rc)
        problem "$outcome; stderr: $(head -c 300 "$S/err")"
        cmp -s -- "$S/pristine/$(basename -- "$real")" "$real" || problem "and the file changed"
    fi
    [ "$(stat -c %a -- "$real")" = "$mode_before" ] || problem "permissions changed from $mode_before to $(stat -c %a -- "$real")"
    [ -z "$EXTRA_CHECK" ] || $EXTRA_CHECK
    listing "$folder" | diff "$S/ls-before" - >"$S/ls-diff" || problem "files appeared or vanished beside it: $(tr '\n' ' ' <"$S/ls-diff")"
    listing "$linkfolder" | diff "$S/ls-link-before" - >"$S/ls-diff" || problem "files appeared or vanished in the named folder: $(tr '\n' ' ' <"$S/ls-diff")"
    finish "$label" "$outcome"
    if [ ${#NOTES[@]} -gt 0 ]; then printf 'note: %s\n' "${NOTES[@]}" | detail; fi
}

# check_refused LABEL DIR ARG [kivmeta options]: must exit 1 with a message, file untouched.
check_refused() {
    local label=$1 dir=$2 arg=$3; shift 3
    new_scratch
    PROBLEMS=() NOTES=()
    local real; real=$(cd "$dir" && readlink -f -- "$arg")
    local folder; folder=$(dirname -- "$real")
    cp -p -- "$real" "$S/pristine"
    local mode_before; mode_before=$(stat -c %a -- "$real")
    listing "$folder" >"$S/ls-before"
    run_kivmeta "$dir" "$@" "$arg"
    local rc=$?
    local message; message=$(refusal_message)
    local outcome
    if [ $rc -eq 1 ]; then outcome="refused (${message:-no message})"; else outcome=$(describe_status $rc); fi
    [ $rc -eq 1 ] || problem "$outcome, expected exit status 1; stderr: $(head -c 300 "$S/err")"
    [ -n "$message" ] || problem "no 'kivmeta: cannot write FILE: REASON' on stderr"
    cmp -s -- "$S/pristine" "$real" || problem "the file changed"
    [ "$(stat -c %a -- "$real")" = "$mode_before" ] || problem "permissions changed from $mode_before to $(stat -c %a -- "$real")"
    listing "$folder" | diff "$S/ls-before" - >"$S/ls-diff" || problem "files appeared or vanished beside it: $(tr '\n' ' ' <"$S/ls-diff")"
    finish "$label" "$outcome"
}

############################################################################
# 1. The corpus
############################################################################
echo "== corpus"
GEN=$WORK/gen
CORPUS=$WORK/corpus
mkdir -p "$GEN" "$CORPUS"
helper bases "$GEN"

# Files shipped in Debian packages.  NAME|EXPECT|SOURCE|PACKAGE|WHAT
# A package marked '?' is not installed by scripts/install-deps.sh: used when present.
PACKAGED='qt-header-bg.jpg|write|/usr/share/qt6/doc/global/template/images/Qt-header-bg.jpg|qt6-base-dev|JPEG by Photoshop CS6: XMP, Ducky APP12, Adobe APP14
qt-company.png|write|/usr/share/qt6/doc/global/template/style/theqtcompany.png|qt6-base-dev|PNG by Photoshop CC 2014, XMP
qt-arrow.png|write|/usr/share/qt6/doc/global/template/images/arrow.png|qt6-base-dev|PNG by Photoshop CS5.1, XMP
nikon-d2h.jpg|write|/usr/share/gocode/src/github.com/rwcarlsen/goexif/exif/sample1.jpg|golang-github-rwcarlsen-goexif-dev|JPEG from a Nikon D2H: EXIF, maker notes, GPS, thumbnail, Photoshop IRB, XMP toolkit 2.8
htc-panorama.jpg|write|/usr/share/gocode/src/github.com/rwcarlsen/goexif/exif/samples/geodegrees_as_string.jpg|golang-github-rwcarlsen-goexif-dev|JPEG from an HTC One M8: EXIF, GPano XMP by Adobe XMP Core 5.1
iphone-exiv2.jpg|write|/usr/share/gocode/src/github.com/rwcarlsen/goexif/exif/samples/has-lens-info.jpg|golang-github-rwcarlsen-goexif-dev|JPEG from an iPhone 4S: Apple maker notes, XMP written by Exiv2
cut-after-exif.jpg|any|/usr/share/gocode/src/github.com/rwcarlsen/goexif/exif/samples/2007-05-12-08-19-07-sep-2007-05-12-08-19-07a.jpg|golang-github-rwcarlsen-goexif-dev|JPEG cut short after its EXIF (exiftool: JPEG format error)
cmake-logo.gif|refuse|/usr/share/doc/cmake-data/CMakeLogo.gif|cmake-data|GIF without XMP
exiftool-mie.pdf|refuse|/usr/share/doc/libimage-exiftool-perl/html/MIE1.1-20070121.pdf|libimage-exiftool-perl|PDF from Mac OS X Quartz, no XMP
adwaita-parental.svg|any|/usr/share/icons/Adwaita/scalable/legacy/preferences-system-parental-controls-symbolic.svg|?adwaita-icon-theme|SVG by Inkscape with RDF metadata'

CORPUS_CASES=()   # NAME|EXPECT|WHAT
MISSING=()
while IFS='|' read -r name expect source package what; do
    if [ -f "$source" ]; then
        cp -- "$source" "$CORPUS/$name" && chmod 644 "$CORPUS/$name"
        CORPUS_CASES+=("$name|$expect|$what (${package#\?})")
    elif [ "${package:0:1}" = "?" ]; then
        echo "note: $name left out: $source is not installed (Debian package ${package#\?})"
    else
        MISSING+=("$name: $source (Debian package $package)")
    fi
done <<<"$PACKAGED"

# Files made here with exiftool.
python3 -c "print(' '.join('word%05d' % i for i in range(11000)))" >"$GEN/description.txt"   # 110 KB

etool -q -q -all= -o "$GEN/base.jpg" "$CORPUS/qt-header-bg.jpg" >/dev/null
[ -f "$GEN/base.jpg" ] || etool -q -q -all= -o "$GEN/base.jpg" /usr/share/qt6/doc/global/template/images/Qt-footer-bg.jpg >/dev/null

corpus_file() {   # corpus_file NAME EXPECT WHAT BASE exiftool-args...
    local name=$1 expect=$2 what=$3 base=$4; shift 4
    if [ ! -f "$base" ]; then
        MISSING+=("$name: its base $(basename -- "$base") is missing")
        return
    fi
    cp -- "$base" "$CORPUS/$name"
    if [ $# -gt 0 ] && ! et "$@" "$CORPUS/$name"; then
        MISSING+=("$name: exiftool could not write its metadata")
        return
    fi
    CORPUS_CASES+=("$name|$expect|$what (made here)")
}

EXIF_TAGS=(-EXIF:Make=KivCam "-EXIF:Model=KC-1 Mark II" "-EXIF:DateTimeOriginal=2021:06:01 10:20:30"
           "-EXIF:Artist=Ada Lovelace" "-EXIF:Software=Camera firmware 1.0")
XMP_TAGS=(-XMP-dc:Subject=harbour -XMP-dc:Subject=boats -XMP-dc:Subject=dawn -XMP-dc:Subject=fog
          "-XMP-dc:Creator=Ada Lovelace" "-XMP-dc:Creator=Charles Babbage"
          "-XMP-dc:Title=Harbour at dawn" "-XMP-dc:Title-de=Hafen im Morgengrauen" "-XMP-dc:Title-fr=Port à l'aube"
          "-XMP-photoshop:Headline=Old headline" -XMP-photoshop:City=Bergen
          -XMP-tiff:Make=PacketMake -XMP-tiff:Orientation#=6 "-XMP-exif:DateTimeOriginal=1999:12:31 23:59:58"
          "-XMP-iptcCore:CreatorContactInfo={CiEmailWork=ada@example.org,CiAdrCity=Bergen}")
IPTC_TAGS=(-IPTC:Keywords=harbour -IPTC:Keywords=boats -IPTC:Keywords=dawn -IPTC:Keywords=fog
           "-IPTC:By-line=Ada Lovelace" "-IPTC:By-line=Charles Babbage" "-IPTC:Headline=Old headline")

# EXIF, IPTC and XMP that agree, then IPTC changed behind the digest's back: a stale
# IPTC digest invites a reader to import IPTC over XMP.  Mode 600 must survive a write.
corpus_file exif-iptc-stale.jpg write "JPEG: EXIF, IPTC with a stale digest, XMP lists, language alternatives, tiff:/exif: in XMP" \
    "$GEN/base.jpg" "${EXIF_TAGS[@]}" "${IPTC_TAGS[@]}" "${XMP_TAGS[@]}" -IPTCDigest=new
digest=$(etool -s3 -IPTCDigest "$CORPUS/exif-iptc-stale.jpg")
et -IPTC:Keywords=storm -IPTC:Keywords=night "-IPTC:By-line=Someone Else" "$CORPUS/exif-iptc-stale.jpg"
et "-IPTCDigest=$digest" "$CORPUS/exif-iptc-stale.jpg"
chmod 600 "$CORPUS/exif-iptc-stale.jpg"

helper packet "$GEN/nopad.xmp" 0
helper packet "$GEN/padded.xmp" 2000
corpus_file handwritten-nopad.jpg write "JPEG: hand-written packet without padding, rdf:about uuid, qualifiers, empty structures, EXIF Make differing from tiff:Make" \
    "$GEN/base.jpg" -EXIF:Make=ExifMake -EXIF:Orientation#=3 "-XMP<=$GEN/nopad.xmp"
corpus_file extended.jpg write "JPEG with Extended XMP (110 KB dc:description)" \
    "$GEN/base.jpg" -XMP-dc:Title=Extended -XMP-photoshop:City=Oslo "-XMP-dc:Description<=$GEN/description.txt"
corpus_file no-xmp.jpg write "JPEG with no metadata" "$GEN/base.jpg"
cp "$GEN/padded.xmp" "$CORPUS/handwritten.xmp"; CORPUS_CASES+=("handwritten.xmp|write|XMP sidecar, hand-written (made here)")
etool -q -q -o "$CORPUS/exiftool.xmp" "${XMP_TAGS[@]}" -XMP-xmp:Rating=3 >/dev/null
CORPUS_CASES+=("exiftool.xmp|write|XMP sidecar written by exiftool (made here)")
corpus_file tagged.png write "PNG: eXIf, XMP iTXt, tEXt" "$GEN/base.png" "${EXIF_TAGS[@]}" "${XMP_TAGS[@]}" \
    -PNG:Author=Ada "-PNG:Comment=A comment chunk"
corpus_file no-xmp.png write "PNG with no metadata" "$GEN/base.png"
corpus_file tagged.tif write "TIFF: EXIF, IPTC, XMP with tiff: properties" "$GEN/base.tif" \
    "${EXIF_TAGS[@]}" "${IPTC_TAGS[@]}" "${XMP_TAGS[@]}"
corpus_file tagged.dng write "DNG: EXIF and camera-raw settings in XMP" "$GEN/base.dng" "${EXIF_TAGS[@]}" \
    -XMP-crs:Exposure2012=+0.50 -XMP-crs:WhiteBalance=Custom -XMP-crs:Temperature=5600 \
    -XMP-crs:ToneCurvePV2012=0,0 -XMP-crs:ToneCurvePV2012=255,255 -XMP-dc:Title=Raw
corpus_file tagged.psd any "PSD: EXIF, IPTC, XMP" "$GEN/base.psd" "${EXIF_TAGS[@]}" "${IPTC_TAGS[@]}" "${XMP_TAGS[@]}"
corpus_file tagged.gif any "GIF (cmake-data) with XMP added by exiftool" "$CORPUS/cmake-logo.gif" "${XMP_TAGS[@]}"
corpus_file tagged.webp any "WebP: EXIF, XMP" "$GEN/base.webp" "${EXIF_TAGS[@]}" "${XMP_TAGS[@]}"
corpus_file tagged.mp4 any "MP4 with XMP" "$GEN/base.mp4" "${XMP_TAGS[@]}"
corpus_file packet.svg any "SVG with an XMP packet in <metadata>" "$GEN/packet.svg"
corpus_file tagged.pdf refuse "PDF (libimage-exiftool-perl) with XMP added by exiftool" "$CORPUS/exiftool-mie.pdf" "${XMP_TAGS[@]}"
corpus_file plain.bmp refuse "BMP, no place for XMP" "$GEN/base.bmp"
if command -v opj_compress >/dev/null; then
    opj_compress -n 2 -i "$GEN/base.pgm" -o "$GEN/base.jp2" >/dev/null 2>&1
    corpus_file tagged.jp2 refuse "JPEG 2000 (opj_compress) with XMP by exiftool: packet found only by scanning" "$GEN/base.jp2" "${XMP_TAGS[@]}"
    corpus_file plain.jp2 refuse "JPEG 2000 (opj_compress) without XMP" "$GEN/base.jp2"
else
    MISSING+=("tagged.jp2, plain.jp2: opj_compress (Debian package libopenjp2-tools)")
fi
if command -v heif-enc >/dev/null; then
    heif-enc -q 50 "$GEN/base.png" -o "$GEN/base.heic" >/dev/null 2>&1
    corpus_file tagged.heic any "HEIC (heif-enc) with EXIF and XMP by exiftool" "$GEN/base.heic" "${EXIF_TAGS[@]}" "${XMP_TAGS[@]}"
else
    MISSING+=("tagged.heic: heif-enc (Debian package libheif-examples)")
fi
if command -v avifenc >/dev/null; then
    avifenc -s 10 "$GEN/base.png" "$GEN/base.avif" >/dev/null 2>&1
    corpus_file tagged.avif any "AVIF (avifenc) with EXIF and XMP by exiftool" "$GEN/base.avif" "${EXIF_TAGS[@]}" "${XMP_TAGS[@]}"
else
    MISSING+=("tagged.avif: avifenc (Debian package libavif-bin)")
fi

# The corpus must be what it claims to be.
digests=$(etool -q -q -s3 -IPTCDigest -CurrentIPTCDigest "$CORPUS/exif-iptc-stale.jpg")
[ "$(sort -u <<<"$digests" | wc -l)" -eq 2 ] || MISSING+=("exif-iptc-stale.jpg: its IPTC digest is not stale: $digests")
extended=$(etool -q -q -s3 -XMP-xmpNote:HasExtendedXMP "$CORPUS/extended.jpg")
[ -n "$extended" ] || MISSING+=("extended.jpg: exiftool wrote no Extended XMP")
python3 -c 'import sys; sys.exit(open(sys.argv[2], "rb").read() not in open(sys.argv[1], "rb").read())' \
    "$CORPUS/handwritten-nopad.jpg" "$GEN/nopad.xmp" || MISSING+=("handwritten-nopad.jpg: the packet was not stored as written")

for missing in ${MISSING[@]+"${MISSING[@]}"}; do
    fail "corpus set-up" "$missing (scripts/install-deps.sh installs what the corpus needs)"
done

# The later sections start from these unedited copies.
ORIG=$WORK/originals
cp -a "$CORPUS" "$ORIG"

for entry in "${CORPUS_CASES[@]}"; do
    IFS='|' read -r name expect what <<<"$entry"
    if [ ! -s "$CORPUS/$name" ]; then
        fail "corpus $name" "could not be made"
        continue
    fi
    check_edit "corpus $name [$what]" "$expect" "$CORPUS" "$CORPUS/$name"
done

############################################################################
# 2. Paths
############################################################################
echo "== paths"
P=$WORK/paths
mkdir -p "$P/parent/a" "$P/x" "$P/y" "$P/sub dir" "$P/elsewhere" "$P/links" "$P/side"
src=$ORIG/exif-iptc-stale.jpg
for f in "$P/parent/a/b.jpg" "$P/x/c.jpg" "$P/sub dir/c.jpg" "$P/fjörd-ß.jpg" "$P/elsewhere/real.jpg"; do
    cp -- "$src" "$f"; chmod 644 "$f"
done
ln -s ../elsewhere/real.jpg "$P/links/link.jpg"

check_edit "path a/b.jpg from its parent folder" write "$P/parent" a/b.jpg
check_edit "path ../x/c.jpg" write "$P/y" ../x/c.jpg
check_edit "path 'sub dir/c.jpg'" write "$P" "sub dir/c.jpg"
check_edit "path fjörd-ß.jpg" write "$P" fjörd-ß.jpg
still_a_link() {
    [ -L "$P/links/link.jpg" ] || problem "link.jpg is no longer a symbolic link"
    [ "$(readlink "$P/links/link.jpg")" = ../elsewhere/real.jpg ] \
        || problem "link.jpg no longer points to ../elsewhere/real.jpg: '$(readlink "$P/links/link.jpg")'"
}
EXTRA_CHECK=still_a_link
check_edit "path symbolic link link.jpg -> ../elsewhere/real.jpg" write "$P/links" link.jpg
EXTRA_CHECK=""

# --sidecar on files that cannot hold XMP: NAME.xmp beside them, the file untouched.
for sidecase in "pic.bmp|$GEN/base.bmp|" "scan.jp2|$GEN/base.jp2|existing"; do
    IFS='|' read -r name base existing <<<"$sidecase"
    new_scratch
    PROBLEMS=() NOTES=()
    stem=${name%.*}
    if [ ! -f "$base" ]; then fail "sidecar $name" "no base file"; continue; fi
    cp -- "$base" "$P/side/$name"; chmod 644 "$P/side/$name"
    cp -- "$P/side/$name" "$S/original"
    rm -f "$P/side/$stem.xmp"
    if [ -n "$existing" ]; then
        cp -- "$ORIG/exiftool.xmp" "$P/side/$stem.xmp"
        mkdir -p "$S/pristine"; cp -- "$P/side/$stem.xmp" "$S/pristine/$stem.xmp"
        snapshot "$P/side/$stem.xmp" >"$S/before.json"
    fi
    listing "$P/side" >"$S/ls-before"
    run_kivmeta "$P/side" --sidecar --set "photoshop:Headline=$HEADLINE" "$name"
    rc=$?
    [ $rc -eq 0 ] || problem "$(describe_status $rc); stderr: $(head -c 300 "$S/err")"
    cmp -s -- "$S/original" "$P/side/$name" || problem "$name changed"
    grep -q "^kivmeta: wrote .*$stem\.xmp" "$S/out" || problem "stdout lacks 'kivmeta: wrote $stem.xmp': $(head -c 200 "$S/out")"
    if [ -f "$P/side/$stem.xmp" ]; then
        if [ -n "$existing" ]; then
            snapshot "$P/side/$stem.xmp" >"$S/after.json"
            check_written "$P/side/$stem.xmp"
        else
            [ "$(headline_of "$P/side/$stem.xmp")" = "$HEADLINE" ] || problem "$stem.xmp has no headline $HEADLINE"
        fi
    else
        problem "$stem.xmp was not written"
    fi
    expected=$( (cat "$S/ls-before"; echo "$stem.xmp") | sort -u)
    [ "$(listing "$P/side" | sort)" = "$expected" ] || problem "unexpected files beside it: $(listing "$P/side" | tr '\n' ' ')"
    finish "sidecar --sidecar $name${existing:+ (edits the existing $stem.xmp)}"
    rm -f -- "$P/side/$name" "$P/side/$stem.xmp"
done

############################################################################
# 3. Damage: refused, the original byte-identical
############################################################################
echo "== damage"
D=$WORK/damage
mkdir -p "$D/files" "$D/ro-folder" "$D/full"
SET=(--set "photoshop:Headline=$HEADLINE")

helper cut-in-xmp "$ORIG/exif-iptc-stale.jpg" "$D/files/cut-in-xmp.jpg"
check_refused "damage JPEG cut in the middle of its XMP segment" "$D/files" cut-in-xmp.jpg "${SET[@]}"

helper malformed "$GEN/base.jpg" "$D/files/malformed.jpg"
check_refused "damage XMP packet that is not well-formed" "$D/files" malformed.jpg "${SET[@]}"

cp -- "$ORIG/exif-iptc-stale.jpg" "$D/files/read-only.jpg"; chmod 444 "$D/files/read-only.jpg"
check_refused "damage read-only file (mode 444)" "$D/files" read-only.jpg "${SET[@]}"

cp -- "$ORIG/exif-iptc-stale.jpg" "$D/ro-folder/in-ro-folder.jpg"; chmod 644 "$D/ro-folder/in-ro-folder.jpg"
chmod 555 "$D/ro-folder"
if [ "$(id -u)" -eq 0 ]; then
    # root writes anywhere: run as nobody so that the folder really is read-only.
    mkdir -p "$WORK/nobody"; chmod 700 "$WORK/nobody"
    chown 65534:65534 "$WORK/nobody" "$D/ro-folder/in-ro-folder.jpg"
    RUN_AS=(env HOME="$WORK/nobody" XDG_CONFIG_HOME="$WORK/nobody" XDG_DATA_HOME="$WORK/nobody"
            XDG_CACHE_HOME="$WORK/nobody" XDG_RUNTIME_DIR="$WORK/nobody"
            setpriv --reuid=65534 --regid=65534 --clear-groups --)
    chmod 755 "$WORK/damage" "$D"
fi
check_refused "damage file in a read-only folder" "$D/ro-folder" in-ro-folder.jpg "${SET[@]}"
RUN_AS=()
chmod 755 "$D/ro-folder"

# A full disk: the file may grow by 4 KB (a packet without padding, a 4 KB headline),
# so it cannot be written in place, and the file-size limit stops the new copy.
python3 -c "print('x' * 40000)" >"$GEN/comment.txt"
cp -- "$GEN/base.jpg" "$D/full/full-disk.jpg"
et "-Comment<=$GEN/comment.txt" "-XMP<=$GEN/nopad.xmp" "$D/full/full-disk.jpg"
size_kib=$(( $(stat -c %s "$D/full/full-disk.jpg") / 1024 ))
FSIZE_LIMIT=$((size_kib / 2))
LONG=$(python3 -c "print('L' * 4096)")
check_refused "damage full disk (ulimit -f ${FSIZE_LIMIT} KiB, file ${size_kib} KiB)" "$D/full" full-disk.jpg \
    --set "photoshop:Headline=$LONG"
FSIZE_LIMIT=""

############################################################################
# 4. Many files, one of them bad
############################################################################
echo "== many files"
new_scratch
PROBLEMS=() NOTES=()
M=$WORK/many
mkdir -p "$M" "$S/pristine"
FILES=()
sources=("$ORIG/exif-iptc-stale.jpg" "$ORIG/tagged.png" "$ORIG/tagged.tif" "$ORIG/handwritten-nopad.jpg" "$ORIG/nikon-d2h.jpg")
for i in $(seq -w 1 20); do
    if [ "$i" = 13 ]; then
        helper malformed "$GEN/base.jpg" "$M/f13-bad.jpg"
        FILES+=(f13-bad.jpg)
        continue
    fi
    src=${sources[$((10#$i % ${#sources[@]}))]}
    ext=${src##*.}
    cp -- "$src" "$M/f$i.$ext"; chmod 644 "$M/f$i.$ext"
    FILES+=("f$i.$ext")
done
for f in "${FILES[@]}"; do cp -p -- "$M/$f" "$S/pristine/$f"; done
GOOD=()
for f in "${FILES[@]}"; do [ "$f" = f13-bad.jpg ] || GOOD+=("$f"); done
snapshot "${GOOD[@]/#/$M/}" >"$S/before.json"
listing "$M" >"$S/ls-before"
run_kivmeta "$M" --set "photoshop:Headline=$HEADLINE" "${FILES[@]}"
rc=$?
[ $rc -eq 1 ] || problem "$(describe_status $rc), expected 1"
snapshot "${GOOD[@]/#/$M/}" >"$S/after.json"
check_written "${GOOD[@]/#/$M/}"
cmp -s "$S/pristine/f13-bad.jpg" "$M/f13-bad.jpg" || problem "the bad file changed"
# The refused files come last, each with its reason; a summary line may follow.
grep -qE '^kivmeta: cannot write .*f13-bad\.jpg: .+' "$S/err" \
    || problem "stderr has no 'kivmeta: cannot write f13-bad.jpg: REASON' line: $(head -c 300 "$S/err")"
last=$(grep -E 'f[0-9]{2}(-bad)?\.(jpg|png|tif)' "$S/err" | tail -n 1)
grep -q 'f13-bad.jpg' <<<"$last" || problem "the last file named on stderr is not f13-bad.jpg: '$last'"
for f in "${GOOD[@]}"; do
    if grep 'cannot write' "$S/err" | grep -qF "$f"; then problem "stderr reports $f as not written"; fi
done
listing "$M" | diff "$S/ls-before" - >"$S/ls-diff" || problem "files appeared or vanished: $(tr '\n' ' ' <"$S/ls-diff")"
finish "many files: 19 written, f13-bad.jpg refused and listed at the end" "exit status $rc"
[ ${#NOTES[@]} -eq 0 ] || printf 'note: %s\n' "${NOTES[@]}" | sort -u | head -n 3 | detail

echo "$PASSED passed, $FAILED failed"
[ "$FAILED" -eq 0 ]
