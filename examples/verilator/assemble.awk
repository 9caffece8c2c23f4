# Makes a text object file (docs/vexon-format.md) or an ELF executable of an assembler source such as program.s:
#
#   awk -f assemble.awk program.s > program.vexon
#   printf "$(awk -v form=elf -f assemble.awk program.s)" > program.elf     (the bytes come as escape sequences)
#
# A .word is stored with its lowest byte first; bits stand in the order in which they are read.

BEGIN {
    split("HALT LI ADD ADDI LW SW BNE", names)
    for (n in names) operation[names[n]] = n - 1
}

{ sub(/;.*/, ""); sub(/^[a-z]+:/, ""); gsub(/,/, " "); $0 = $0 }
NF == 0 { next }

$1 == ".section" {
    ++sections
    name[sections] = $2; space[sections] = $3; bits[sections] = $4; units[sections] = $5; address[sections] = number($6)
    next
}

$1 == ".word" { for (i = 2; i <= NF; ++i) add(little_endian(digits(number($i), 32))); next }

$1 in operation { # a field that is not there, or not a register or number where one is wanted, counts 0
    add(digits(operation[$1], 4) digits(register($2), 4) digits(register($3), 4) "0000" digits(number($NF), 16))
    next
}

{ print FILENAME ":" FNR ": unknown: " $1 > "/dev/stderr"; failed = 1; exit 1 }

END { if (!failed) { if (form == "elf") write_elf(); else write_file() } }

function add(line) { lines[sections, ++words[sections]] = line }

function register(text) { return text ~ /^r/ ? substr(text, 2) + 0 : 0 }

function number(text,    value, i, negative) {
    negative = sub(/^-/, "", text)
    if (text !~ /^0x/) value = text + 0
    else for (i = 3; i <= length(text); ++i) value = 16 * value + index("0123456789abcdef", tolower(substr(text, i, 1))) - 1
    return negative ? -value : value
}

function digits(value, count,    text) {
    if (value < 0) value += 2 ^ count
    for (; count > 0; --count) { text = value % 2 text; value = int(value / 2) }
    return text
}

function little_endian(word) { return substr(word, 25) substr(word, 17, 8) substr(word, 9, 8) substr(word, 1, 8) }

function field(value, description) { print value "\t// " description }

function named(text, description) { print length(text); field(text, description) }

function organization(valid, space, bits, units) {
    field(valid, "set to 1, if memory organization information specified here is valid ")
    named(space, "address space name")
    field(bits, "word bit-size")
    field(units, "bytes per word")
    field(1, "byte order, 0-little, 1-big, or invalid if me. org. info is not valid")
}

function write_file(    s, w, first_line) {
    print "AgT62kG9y7"
    field("2000.01.01:00:00:00", "timestamp")
    organization(0, "", 0, 0)
    print 2
    field("XS", "flags")
    field(1, "is entry point set?")
    field(0, "byte address of entry point")
    field(sections, "section count")
    field(0, "symbol table count")
    field(0, "symbol table address")
    first_line = 15 + 17 * sections
    for (s = 1; s <= sections; ++s) {
        named(name[s], "*** section header *** - name")
        organization(1, space[s], bits[s], units[s])
        field(4, "section byte alignment")
        field(1, "is address absolute?")
        field(sprintf("%.0f", address[s]), "section address") # awk writes large numbers with an exponent
        print 1
        field(space[s] == "program" ? "T" : "D", "section flags")
        field(words[s] * units[s], "section data size in bytes")
        field(0, "count of relocations ")
        field(first_line, "first line of section data")
        field(0, "first line of relocation data")
        first_line += words[s]
    }
    for (s = 1; s <= sections; ++s) for (w = 1; w <= words[s]; ++w) print lines[s, w]
}

# The ELF form: the sections with their contents behind the header, then the address space table, the section names and the
# section headers. The upper half of a section's flags is the number of its address space.

function little(value, bytes,    text) {
    for (; bytes > 0; --bytes) { text = text sprintf("\\x%02x", value % 256); value = int(value / 256) }
    return text
}

function text_bytes(text,    i, bytes) {
    for (i = 1; i <= length(text); ++i)
        bytes = bytes little(index(ascii, substr(text, i, 1)) + 31, 1)
    return bytes little(0, 1)
}

function size_of(bytes) { return length(bytes) / 4 }

function section_header(name, type, flags, space, address, bytes) {
    headers = headers little(size_of(names_bytes), 4) little(type, 4) little(flags, 4) little(space, 4) \
        little(address, 8) little(64 + size_of(contents), 8) little(size_of(bytes), 8) little(0, 8) little(4, 8) little(0, 8)
    names_bytes = names_bytes text_bytes(name)
    contents = contents bytes
}

function write_elf(    s, w, i, bytes, table, n) {
    for (i = 32; i < 127; ++i) ascii = ascii sprintf("%c", i)
    names_bytes = little(0, 1)
    headers = little(0, 64)
    table = little(sections, 2)
    for (s = 1; s <= sections; ++s) {
        bytes = ""
        for (w = 1; w <= words[s]; ++w) for (i = 1; i <= 32; i += 8) bytes = bytes binary_byte(substr(lines[s, w], i, 8))
        section_header(name[s], 1, space[s] == "program" ? 6 : 3, s - 1, address[s], bytes)
        table = table text_bytes(space[s]) little(0, 2) little(bits[s], 2) little(bits[s] / units[s], 2) little(1, 2)
    }
    section_header(".marlune_as", 1879048192, 0, sections, 0, table)
    n = names_bytes text_bytes(".shstrtab")
    section_header(".shstrtab", 3, 0, 0, 0, n)
    printf "%s", "\\x7fELF" little(2, 1) little(1, 1) little(1, 1) little(0, 9) little(2, 2) little(192, 2) little(1, 4) \
        little(0, 8) little(0, 8) little(64 + size_of(contents), 8) little(0, 4) little(64, 2) little(0, 2) little(0, 2) \
        little(64, 2) little(sections + 3, 2) little(sections + 2, 2) contents headers
}

function binary_byte(text,    value, i) {
    for (i = 1; i <= 8; ++i) value = 2 * value + substr(text, i, 1)
    return little(value, 1)
}
