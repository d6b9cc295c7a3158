"""Damages and forges packages systematically. Each function yields pairs: what was done, the package."""

import base64
import hashlib
import struct

from independent_judge import FILE_HEAD, HEAD, TRAILER_FORMAT
from maker import DIGEST_INFO, head_sign, put, renew, trailer, trailer_sign, word

EXTREMES = (0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF)


def body_of(package):
    """A package less its trailer."""
    at = package.rfind(b"--=</Begin ")
    return package if at < 0 else package[:at]


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
    found = {0, 4, 32, 3104, 3120, 5168, 6176, HEAD, len(package), len(body_of(package))}
    for row in range(word(package, 4)):
        offset, total = word(package, 32 + 24 * row + 4), word(package, 32 + 24 * row + 8)
        found |= {32 + 24 * row, offset, offset + FILE_HEAD, offset + total}
    trailer_start = len(body_of(package))
    found |= {trailer_start + at for at, byte in enumerate(package[trailer_start:]) if byte == ord("\n")}
    return sorted(found)


def truncations(maker, _step):
    """The end, or the start, cut at every border and beside it; a cut body with the whole trailer."""
    for name, package in maker.valid.items():
        end = package[len(body_of(package)) :]
        for border in borders(package):
            for at in range(max(border - 1, 0), min(border + 2, len(package))):
                yield f"{name}: cut at {at}", package[:at]
                yield f"{name}: begins at {at}", package[at:]
                yield f"{name}: cut at {at}, trailer kept", package[:at] + end
        for surplus in (b"\0", b"\n", b"X", end or b"\0" * FILE_HEAD):
            yield f"{name}: {len(surplus)} bytes appended", package + surplus


def length_fields(package):
    """Offset of every length, count and offset of a package, and whether it lies in the head."""
    yield from ((at, f"word {at}") for at in (4, 28, 3108))
    for row in range(word(package, 4)):
        entry = 32 + 24 * row
        yield from ((entry + at, f"row {row} word {at}") for at in (0, 4, 8, 12, 16))
        head = word(package, entry + 4)
        yield from ((head + at, f"file {row} word {at}") for at in (12, 20, 24, 40, 44, 328, 332, 336))


def lengths(maker, step):
    """Every length at its extremes, one past the file and wrapping; not signed again, and signed by the maker himself,
    so that what lies behind the signature has to bear it. A `step` above 1 leaves out two kinds of packages and signs
    one only."""
    for name, package in maker.valid.items():
        if step > 1 and name not in ("trailer", "head"):
            continue
        size = len(package)
        for at, what in length_fields(package):
            now = word(package, at)
            values = {*EXTREMES, now - 1, now + 1, size, size + 1, size - HEAD, size - HEAD + 1, 129, 2048, 2049}
            values |= {-size, 2**32 - FILE_HEAD, 2**32 - FILE_HEAD - 1, 2**32 - HEAD, 2**32 - at}
            for value in sorted(v & 0xFFFFFFFF for v in values):
                damaged = put(package, at, value)
                yield f"{name}: {what} = {value:#x}", damaged
                body = put(body_of(package), at, value)
                if name == "head" and at != 3108 and step == 1:
                    yield f"{name}: {what} = {value:#x}, signed", head_sign(body, maker.pair)
                elif name == "trailer" or (name == "host" and step == 1):
                    yield f"{name}: {what} = {value:#x}, signed", trailer_sign(body, maker.pair)


def words_of_the_head(maker, _step):
    """Words that decide something, signed by the maker himself."""
    for at in (8, 3104, 5168, 5176, 5180):
        for value in (*EXTREMES, 2, 3, TRAILER_FORMAT, TRAILER_FORMAT ^ 1):
            body = put(maker.body, at, value)
            yield f"word {at} = {value:#x}, trailer", trailer_sign(body, maker.pair)
            if at != 3104:
                yield f"word {at} = {value:#x}, head", head_sign(body, maker.pair)
    for crc in (0x10000, 0x80000000):
        body = maker.body[:6176] + struct.pack(">I", word(maker.body, 6176) | crc) + maker.body[HEAD:]
        yield f"CRC word | {crc:#x}", trailer_sign(body, maker.pair)
    for attribute in (1, 3):
        yield f"attribute {attribute}", trailer_sign(put(maker.body, 5176, attribute), maker.pair)


def wrong_keys(maker, _step):
    """Every key of the device named for a good signature, names that lead elsewhere, and signatures of others."""
    names = [*maker.keys, b"link", b"directory", b"missing", b"../outside", b"./maker", b".hidden", b".."]
    names += [b"keys/maker", b"/etc/hosts", b"maker.key", b"MAKER", b""]
    names += [b" maker", b"maker ", b"mak er", b"maker\tx", b"m" * 300]
    for key in names:
        yield f"key {key}", trailer_sign(maker.body, maker.pair, key=key)
        yield f"key {key}, with DigestInfo", trailer_sign(maker.body, maker.pair, DIGEST_INFO, key=key)
    for pair in (maker.other, maker.three, maker.short):
        for key in (b"maker", b"long", b"other", b"three", b"three-long", b"short"):
            yield f"signed by {pair.pem} for {key}", trailer_sign(maker.body, pair, key=key)
        yield f"head signed by {pair.pem}", head_sign(maker.body, pair)
    for value in (b"\0", b"\x01", b"\0" * 256, b"\0" * 255 + b"\x01", b"\xff" * 256):
        for key in maker.keys:
            yield f"signature {value[-2:]} for {key}", maker.body + trailer(value, key=key)


def trailers(maker, _step):
    """The trailer's lines doubled, missing, moved, mixed, renamed; its lengths and its signature's text wrong."""
    body, pair = maker.body, maker.pair
    good = pair.sign(hashlib.sha256(body).digest())
    size = len(trailer(good))
    generic = rb"--=</%s Signed File Fingerprint\>=--"
    vendor = rb"--=</%s Kelvane Signed File Fingerprint\>=--"

    def made(what, **fields):
        return what, body + trailer(good, **fields)

    for begin in (generic, vendor):
        for end in (generic, vendor):
            yield made(f"markers {begin} {end}", begin=begin % b"Begin", end=end % b"End")
    for line in range(7):
        yield made(f"line {line} doubled", lines=lambda l: l[: line + 1] + l[line:])
        yield made(f"line {line} missing", lines=lambda l: l[:line] + l[line + 1 :])
        yield made(f"line {line} indented", lines=lambda l: l[:line] + [b" " + l[line]] + l[line + 1 :])
        yield made(f"line {line} with a blank", lines=lambda l: l[:line] + [l[line] + b" "] + l[line + 1 :])
        yield made(f"line {line} with NUL", lines=lambda l: l[:line] + [l[line] + b"\0"] + l[line + 1 :])
        yield made(f"line {line} with CR", lines=lambda l: l[:line] + [l[line] + b"\r"] + l[line + 1 :])
        yield made(f"line {line} in small letters", lines=lambda l: l[:line] + [l[line].lower()] + l[line + 1 :])
        yield made(f"empty line before {line}", lines=lambda l: l[:line] + [b""] + l[line:])
        for other in range(line):
            yield made(f"lines {other}, {line} swapped", lines=lambda l: swapped(l, other, line))
    for marker in (generic % b"Begin", vendor % b"Begin", generic % b"End", vendor % b"End"):
        for line in range(8):
            yield made(f"{marker} before line {line}", lines=lambda l: l[:line] + [marker] + l[line:])
    for name in (b"sha1", b"SHA256", b"Sha256", b"sha256x", b"sha25", b"md5", b"sha512", b"", b"sha256 sha256"):
        yield made(f"hash {name}", hash=b"Hash: " + name)
    counts = {0, 1, size - 1, size, size + 1, len(body) + size, len(body) + size - HEAD, len(body), 999999}
    texts = [b"%06d" % count for count in sorted(counts)]
    texts += [form % size for form in (b"%05d", b"%07d", b"%d", b"%6d", b"-%05d", b"+%05d", b"0x%04x")] + [b""]
    for first in texts:
        for second in texts:
            yield made(f"lengths {first} {second}", lengths=(first, second))
    text = base64.b64encode(good)
    for what, signature in {
        "empty": b"",
        "= inside": text[:100] + b"=" + text[101:],
        "last group cut": text[:-1],
        "cut by 2": text[:-2],
        "three =": text[:-3] + b"===",
        "url alphabet": text.replace(b"+", b"-").replace(b"/", b"_"),
        "blank": text[:50] + b" " + text[50:],
        "tab": text[:50] + b"\t" + text[50:],
        "line end": text[:64] + b"\n" + text[64:],
        "stranger": b"*" + text[1:],
        "high": b"\xe9" + text[1:],
        "2048": b"A" * 2048,
        "2052": b"A" * 2052,
        "group more": text + b"AAAA",
        "padded group more": text + b"AA==",
        "twice": text + text,
        "= alone": b"====",
    }.items():
        yield made(f"signature text {what}", text=signature)
    for what, signature in {"255": good[1:], "cut": good[:-1], "257": good + b"\0", "led by 0": b"\0" + good}.items():
        yield f"signature of {what} bytes", body + trailer(signature)
    whole = trailer(good)
    for at in (0, HEAD, HEAD + 1, len(body) - 1):
        yield f"trailer at {at}", body[:at] + whole + body[at:]
        yield f"trailer at {at} and at the end", body[:at] + whole + body[at:] + whole
    yield "two trailers", body + whole + whole
    yield "second trailer signs the first", trailer_sign(body + whole, pair)
    yield "trailer in the data", trailer_sign(put(body.replace(b"another image", whole[:13]), 8, 0x5100), pair)
    yield "a trailer's tail in the data", trailer_sign(body + whole[-90:], pair)


def swapped(lines, a, b):
    lines = list(lines)
    lines[a], lines[b] = lines[b], lines[a]
    return lines


def cube_root(number):
    """The least number whose cube is not below."""
    root = 1 << -(-number.bit_length() // 3)
    while True:
        better = (2 * root + number // root**2) // 3
        if better >= root:
            break
        root = better
    return root if root**3 >= number else root + 1


def inverse_cube(value, bits):
    """A number whose cube ends in these bits; `value` is odd."""
    return pow(value, pow(3, -1, 1 << (bits - 2)), 1 << bits)


def paddings(maker, _step):
    """Blocks that are almost padded right, made with the private key, and blocks forged without it."""
    digest = hashlib.sha256(maker.body).digest()
    blocks = {
        "type 2": b"\x00\x02" + b"\xff" * 221 + b"\x00" + digest,
        "type 0": b"\x00" * 224 + digest,
        "no separator": b"\x00\x01" + b"\xff" * 222 + digest,
        "hole": b"\x00\x01" + b"\xff" * 100 + b"\xfe" + b"\xff" * 120 + b"\x00" + digest,
        "led by 1": b"\x01\x01" + b"\xff" * 221 + b"\x00" + digest,
        "early separator": b"\x00\x01" + b"\xff" * 7 + b"\x00" + digest.rjust(246, b"A"),
        "8 bytes": b"\x00\x01" + b"\xff" * 8 + b"\x00" + digest.rjust(245, b"A"),
        "garbage behind": b"\x00\x01" + b"\xff" * 8 + b"\x00" + (DIGEST_INFO + digest).ljust(245, b"A"),
    }
    for what, block in blocks.items():
        for key in (b"maker", b"long"):
            yield f"block {what} for {key}", maker.body + trailer(maker.pair.raw(block), key=key)
    for what, block in {
        "31 bytes": digest[:31],
        "33 bytes": digest + b"\0",
        "33, led": b"\0" + digest,
        "empty": b"",
        "SHA-1": digest[:20],
        "digest of nothing": hashlib.sha256(b"").digest(),
        "wrong DigestInfo": b"\x30\x20" + DIGEST_INFO[2:] + digest,
        "text": digest.hex().encode(),
        "last bit": digest[:-1] + bytes([digest[-1] ^ 1]),
        "twice": digest + digest,
    }.items():
        for key in (b"maker", b"long"):
            yield f"signed {what} for {key}", maker.body + trailer(maker.pair.sign(block), key=key)
        yield f"head signed {what}", head_sign(maker.body, maker.pair, block)
    for prefix in (b"", DIGEST_INFO):
        for key in (b"three", b"three-long"):
            wanted = b"\x00\x01" + b"\xff" * 8 + b"\x00" + prefix + digest
            root = cube_root(int.from_bytes(wanted.ljust(256, b"\0"), "big"))
            yield f"cube root in front for {key}", maker.body + trailer(root.to_bytes(256, "big"), key=key)
    yield from forged_endings(maker)


def forged_endings(maker):
    """Numbers whose cube begins like padding and ends in the digest: what a long key of exponent 3 would take."""
    for attempt in range(8):
        body = put(maker.body, 3112, attempt)  # a word that nobody reads, so that some digest is odd
        digest = hashlib.sha256(body).digest()
        if digest[-1] % 2 == 0:
            continue
        ending = inverse_cube(int.from_bytes(digest, "big"), 256)
        front = cube_root(int.from_bytes((b"\x00\x01" + b"\xff" * 8 + b"\x00").ljust(256, b"\0"), "big"))
        root = ((front >> 256) + 1 << 256) + ending
        for key in (b"three", b"three-long"):
            yield f"cube ends in the digest, for {key}, {attempt}", body + trailer(root.to_bytes(256, "big"), key=key)


def other_form(maker, _step):
    """A package with a trailer behind a head of the forger's own: one key serves both forms."""
    for order, body in maker.bodies.items():
        genuine = maker.pair.sign(hashlib.sha256(body).digest())
        head = body[:HEAD]
        for row in range(word(body, 4)):
            at = 32 + 24 * row + 4
            head = put(head, at, word(body, at) + HEAD)
        head = put(put(head, 3104, 0), 3108, len(genuine))
        head = renew(head[:3120] + genuine.ljust(2048, b"\0") + head[5168:])
        yield f"{order}: its trailer's signature in the head", head + body
        yield f"{order}: with the trailer", head + body + trailer(genuine)


GROUPS = (other_form, flipped_bytes, truncations, lengths, words_of_the_head, wrong_keys, trailers, paddings)
