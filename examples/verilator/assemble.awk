# Makes a text object file (docs/vexon-format.md) of an assembler source such as program.s:
#
#   awk -f assemble.awk program.s > program.vexon
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

END { if (!failed) write_file() }

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
        field(address[s], "section address")
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
