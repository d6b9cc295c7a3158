"""Damages and forges packages systematically. Each function yields pairs: what was done, the package."""

import base64
import hashlib
import random
import struct
import zlib

from independent_judge import FILE_HEAD, HEAD, STORED, TRAILER_FORMAT, word
from maker import DIGEST_INFO, PRODUCT_TAG, head_sign, put, renew, split, trailer, trailer_sign

EXTREMES = (0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF)


def flipped_bytes(maker, step):
    """Every byte changed, as it is and with a head whose CRC fits again. `step` of 1 changes all, of N every Nth."""
    for name, package in maker.valid.items():
        for at in range(step // 2, len(package), step):
            for mask in (0xFF, 0x01 << (at % 8)):
                damaged = package[:at] + bytes([package[at] ^ mask]) + package[at + 1 :]
                yield f"{name}: byte {at} xor {mask:#x}", damaged
                if at < 6176:
                    yield f"{name}: byte {at} xor {mask:#x}, CRC renewed", renew(damaged)


def borders(package):
    """Offsets where a structure begins or ends."""
    body, end = split(package)
    found = {0, 4, 32, 3104, 3120, 5168, 6176, HEAD, len(package), len(body)}
    for entry in range(32, 32 + 24 * word(package, 4), 24):
        offset = word(package, entry + 4)
        found |= {entry, offset, offset + FILE_HEAD, offset + word(package, entry + 8)}
    found |= {len(body) + at for at, byte in enumerate(end) if byte == ord("\n")}
    return sorted(found)


def truncations(maker, _step):
    """The end, or the start, cut at every border and beside it; a cut body with the whole trailer."""
    for name, package in maker.valid.items():
        end = split(package)[1]
        for border in borders(package):
            for at in range(max(border - 1, 0), min(border + 2, len(package))):
                yield f"{name}: cut at {at}", package[:at]
                yield f"{name}: begins at {at}", package[at:]
                yield f"{name}: cut at {at}, trailer kept", package[:at] + end
        for surplus in (b"\0", b"\n", b"X", end or b"\0" * FILE_HEAD):
            yield f"{name}: {len(surplus)} bytes appended", package + surplus


def words_that_decide(package):
    """Offsets of every length, count, offset and mark of a package."""
    yield from (4, 8, 28, 3104, 3108, 5168, 5176, 5180)
    for entry in range(32, 32 + 24 * word(package, 4), 24):
        yield from (entry + at for at in (0, 4, 8, 12, 16))
        yield from (word(package, entry + 4) + at for at in (12, 20, 24, 40, 44, 328, 332, 336))


def words(maker, step):
    """Every word at its extremes, one past the file and wrapping; not signed again, and signed by the maker himself, so
    that what lies behind the signature has to bear it. A `step` above 1 leaves out two kinds of packages."""
    for name in ("trailer", "head", "vendor", "host") if step == 1 else ("trailer", "head"):
        package = maker.valid[name]
        size = len(package)
        for at in words_that_decide(package):
            now = word(package, at)
            values = {*EXTREMES, now - 1, now + 1, size, size + 1, size - HEAD, size - HEAD + 1, 2, 3, 129, 2048, 2049}
            values |= {-size, -FILE_HEAD, -FILE_HEAD - 1, -HEAD, -at, TRAILER_FORMAT}
            for value in sorted(v & 0xFFFFFFFF for v in values):
                what = f"{name}: word {at} = {value:#x}"
                yield what, put(package, at, value)
                body = put(split(package)[0], at, value)
                if name in ("trailer", "host"):
                    yield f"{what}, signed", trailer_sign(body, maker.pair)
                elif name == "head" and (step == 1 or at in (8, 5168, 5176)):
                    yield f"{what}, signed", head_sign(body, maker.pair)


def wrong_keys(maker, _step):
    """Every key of the device named for a good signature, names that lead elsewhere, and signatures of others."""
    names = [*maker.keys, b"link", b"directory", b"missing", b"../outside", b"./maker", b".hidden", b".."]
    names += [b"directory.key/../maker", b"keys/maker", b"/etc/hosts", b"maker.key", b"MAKER", b""]
    names += [b" maker", b"maker ", b"mak er", b"maker\tx", b"m" * 300]
    for key in names:
        for prefix in (b"", DIGEST_INFO):
            yield f"key {key}, {len(prefix)} bytes before", trailer_sign(maker.body, maker.pair, prefix, key=key)
    for pair in (maker.other, maker.three, maker.short):
        yield f"head signed by {pair.pem}", head_sign(maker.body, pair)
        for key in (b"maker", b"long", b"other", b"three", b"three-long", b"short"):
            yield f"signed by {pair.pem} for {key}", trailer_sign(maker.body, pair, key=key)
    for value in (b"\0", b"\x01", b"\0" * 256, b"\0" * 255 + b"\x01", b"\xff" * 256):
        for key in maker.keys:
            yield f"signature {value[-2:]} for {key}", maker.body + trailer(value, key=key)


MARKERS = [rb"--=</%s %sSigned File Fingerprint\>=--" % (a, b) for a in (b"Begin", b"End") for b in (b"", b"Kelvane ")]
# What may become of any line of a trailer.
LINE_CHANGES = {
    "doubled": lambda line: [line, line],
    "missing": lambda line: [],
    "indented": lambda line: [b" " + line],
    "with a blank": lambda line: [line + b" "],
    "with NUL": lambda line: [line + b"\0"],
    "with CR": lambda line: [line + b"\r"],
    "in small letters": lambda line: [line.lower()],
    "behind an empty one": lambda line: [b"", line],
    **{f"behind {m}": lambda line, m=m: [m, line] for m in MARKERS},
    **{f"replaced by {m}": lambda line, m=m: [m] for m in MARKERS},
}


def trailers(maker, _step):
    """The trailer's lines doubled, missing, moved, mixed, renamed; its lengths and its signature's text wrong."""
    body = maker.body
    good = maker.pair.sign(hashlib.sha256(body).digest())
    whole = trailer(good)

    def with_line(at, change):
        return body + trailer(good, edit=lambda lines: lines[:at] + change(lines[at]) + lines[at + 1 :])

    for at in range(7):
        for what, change in LINE_CHANGES.items():
            yield f"line {at} {what}", with_line(at, change)
        for other in range(at):
            swap = {at: other, other: at}
            swapped = trailer(good, edit=lambda lines: [lines[swap.get(i, i)] for i in range(7)])
            yield f"lines {other}, {at} swapped", body + swapped
    for name in (b"sha1", b"SHA256", b"sha256x", b"sha25", b"md5", b"", b"sha256 sha256"):
        yield f"hash {name}", with_line(3, lambda _: [b"Hash: " + name])
    text = base64.b64encode(good)
    texts = [b"", b"====", text[:-1], text[:-2], text[:-3] + b"===", text + b"AAAA", text + b"AA=="]
    texts += [text[:64] + odd + text[64:] for odd in (b"=", b" ", b"\t", b"\n")]
    texts += [b"*" + text[1:], b"\xe9" + text[1:], text.replace(b"+", b"-").replace(b"/", b"_")]
    for text in [*texts, b"A" * 2048, b"A" * 2052]:
        yield f"signature text {text}", with_line(4, lambda _: [b"Signature: " + text])
    size = len(whole)
    counts = (0, 1, size - 1, size, size + 1, len(body) + size, len(body) + size - HEAD, len(body), 999999)
    digits = [b"%06d" % count for count in counts]
    digits += [form % size for form in (b"%05d", b"%07d", b"%d", b"%6d", b"-%05d", b"+%05d", b"0x%04x")] + [b""]
    for first in digits:
        for last in digits:
            yield f"lengths {first} {last}", body + trailer(good, lengths=(first, last))
    for what, signature in {"255": good[1:], "cut": good[:-1], "257": good + b"\0", "led by 0": b"\0" + good}.items():
        yield f"signature of {what} bytes", body + trailer(signature)
    for at in (0, HEAD, HEAD + 1, len(body) - 1):
        yield f"trailer at {at}", body[:at] + whole + body[at:]
        yield f"trailer at {at} and at the end", body[:at] + whole + body[at:] + whole
    yield "two trailers", body + whole + whole
    yield "second trailer signs the first", trailer_sign(body + whole, maker.pair)
    yield "trailer in the data", trailer_sign(body.replace(b"another image", whole[:13]), maker.pair)
    yield "a trailer's tail in the data", trailer_sign(body + whole[-90:], maker.pair)


def other_blocks(maker, _step):
    """What is almost the digest, signed with the private key."""
    digest = hashlib.sha256(maker.body).digest()
    blocks = [digest[:31], digest + b"\0", b"\0" + digest, b"", digest[:20], digest + digest, digest.hex().encode()]
    blocks += [b"\x30\x20" + DIGEST_INFO[2:] + digest, digest[:-1] + bytes([digest[-1] ^ 1]), hashlib.sha256().digest()]
    blocks.append((DIGEST_INFO + digest).ljust(245, b"A"))
    for block in blocks:
        yield f"head signed {block}", head_sign(maker.body, maker.pair, block)
        for key in (b"maker", b"long"):
            yield f"signed {block} for {key}", maker.body + trailer(maker.pair.sign(block), key=key)


def other_form(maker, _step):
    """A package with a trailer behind a head of the forger's own: one key serves both forms."""
    for order in ("trailer", "host"):
        body = split(maker.valid[order])[0]
        genuine = maker.pair.sign(hashlib.sha256(body).digest())
        head = put(put(body[:HEAD], 3104, 0), 3108, len(genuine))
        for entry in range(32, 32 + 24 * word(body, 4), 24):
            head = put(head, entry + 4, word(body, entry + 4) + HEAD)
        head = renew(head[:3120] + genuine.ljust(2048, b"\0") + head[5168:])
        yield f"{order}: its trailer's signature in the head", head + body
        yield f"{order}: with the trailer", head + body + trailer(genuine)


FILE_IDS = (0x04000000, 0x040000E0, 0x040000F0, 0x1234)


def any_file(chance, order):
    """A file's head and data, and the row of the table that fits them, but for the offset."""
    data = chance.randbytes(chance.choice((0, 1, 30, 500)))
    check_a, check_b = chance.choice(FILE_IDS), zlib.crc32(data)
    head = bytearray(FILE_HEAD)
    fields = {12: check_a, 20: chance.choice((0x51, 0x52)), 24: len(data), 40: len(data), 332: check_b}
    fields |= {44: 0xFFFFFFFF if order == "=" else 0, 328: len(data), 336: chance.choice((STORED, STORED, 2, 0))}
    for at, value in fields.items():
        struct.pack_into(order + "I", head, at, value)
    head[104:110] = b"a.gz\0\0"
    return bytes(head) + data, [check_a, 0, FILE_HEAD + len(data), check_b, check_a, 0]


def any_package(maker, chance):
    """A good package of any form, key, byte order, and number and order of files."""
    order, count = chance.choice(">="), chance.choice((0, 1, 2, 3, 7, 128))
    rows, body = [], b""
    for _ in range(count):
        data, row = any_file(chance, chance.choice(">="))
        row[1] = HEAD + len(body)
        rows.append(row)
        body += data + bytes(chance.choice((0, 0, 5)))
    chance.shuffle(rows)
    table = b"".join(struct.pack(order + "6I", *row) for row in rows)
    head = bytearray(HEAD)
    head[32 : 32 + len(table)] = table
    fields = {4: count, 8: PRODUCT_TAG, 28: len(body), 3104: TRAILER_FORMAT, 5180: 2}
    for at, value in {**fields, 5168: 0xFFFFFFFF if order == "=" else 0}.items():
        struct.pack_into(order + "I", head, at, value)
    package = renew(bytes(head) + body)
    form = chance.choice(("head", "trailer", "long", "Kelvane"))
    if form == "head":
        return head_sign(package, maker.pair)
    if form == "long":
        return trailer_sign(package, maker.pair, DIGEST_INFO, key=b"long")
    return trailer_sign(package, maker.pair, key=b"maker", word=b"" if form == "trailer" else b"Kelvane ")


def damaged(package, chance, others):
    """A package changed in one place: a word, a byte, a part that goes, comes twice or comes from another package."""
    at = chance.choice(list(words_that_decide(package))) if len(package) > HEAD and word(package, 4) < 129 else 8
    at = min(at, max(len(package) - 4, 0))
    first, last = sorted(chance.choice(borders(package)) + chance.choice((0, 0, -1, 1)) for _ in range(2))
    other = chance.choice(others)
    kind = chance.randrange(7)
    if kind < 2:
        now = int.from_bytes(package[at : at + 4], "big")
        value = chance.choice((*EXTREMES, now + 1, now - 1, now ^ 1 << chance.randrange(32), len(package), first))
        return package[:at] + (value & 0xFFFFFFFF).to_bytes(4, "big") + package[at + 4 :]
    if kind == 2:
        at = chance.randrange(len(package))
        return package[:at] + chance.randbytes(1) + package[at + 1 :]
    if kind == 3:
        return package[: max(first, 0)] + package[last:]
    if kind == 4:
        return package[:last] + package[max(first, 0) :]
    if kind == 5:
        return split(package)[0] + split(other)[1]
    return package[: max(first, 0)] + other[max(first, 0) :]


def damaged_grammar(maker, step):
    """A million packages of every form, some good, most damaged in one to three places; for a `step` of N fewer."""
    chance = random.Random(step)
    packages = list(maker.valid.values())
    for number in range(10**6 // step**2):
        if number % 40 == 0:
            packages = [*packages[-9:], any_package(maker, chance)]
            yield f"package {number}", packages[-1]
        package = chance.choice(packages)
        for _ in range(chance.randint(1, 3)):
            if len(package) >= HEAD and word(package, 4) < 129:
                package = damaged(package, chance, packages)
        if len(package) >= HEAD and chance.random() < 0.7:
            package = renew(package)
        if len(package) >= HEAD and chance.random() < 0.02:
            body = split(package)[0]
            package = trailer_sign(body, maker.pair) if chance.random() < 0.5 else head_sign(body, maker.pair)
        yield f"package {number}, damaged", package


GROUPS = (other_form, flipped_bytes, truncations, words, wrong_keys, trailers, other_blocks, damaged_grammar)
