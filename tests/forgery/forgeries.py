"""Damages and forges packages systematically. Each function yields pairs: what was done, the package."""

import base64
import hashlib
import random

from independent_judge import FILE_HEAD, HEAD, TRAILER_FORMAT, word
from maker import DIGEST_INFO, head_sign, join_trailer, put, renew, split, trailer, trailer_lines, trailer_sign

EXTREMES = (0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF)


def flipped_bytes(maker, step):
    """Every byte changed, as it is and with a head whose CRC fits again. `step` of 1 changes all, of N every Nth and one
    of those that fill up the word of the CRC."""
    for name, package in maker.valid.items():
        for at in [*range(step // 2, len(package), step), 6177]:
            for mask in (0xFF, 0x01 << (at % 8)):
                damaged = package[:at] + bytes([package[at] ^ mask]) + package[at + 1 :]
                yield f"{name}: byte {at} xor {mask:#x}", damaged
                if at < 6176:
                    yield f"{name}: byte {at} xor {mask:#x}, CRC renewed", renew(damaged)


def rows(package):
    """Offsets of the rows of a package's table."""
    return range(32, 32 + 24 * word(package, 4), 24)


def borders(package):
    """Offsets where a structure begins or ends."""
    size = len(split(package)[0])
    found = {0, 4, 32, 3104, 3120, 5168, 6176, HEAD, len(package), size, *rows(package)}
    found |= {word(package, row + 4) + at for row in rows(package) for at in (0, FILE_HEAD, word(package, row + 8))}
    return sorted(found | {at for at in range(size, len(package)) if package[at] == ord("\n")})


def words_that_decide(package):
    """Offsets of every length, count, offset and mark of a package."""
    yield from (4, 8, 28, 3104, 3108, 5168, 5176, 5180)
    for entry in rows(package):
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
                if name != "head" or step == 1 or at in (8, 5168, 5176):
                    form = maker.forms.get(name, maker.forms["trailer"])
                    yield f"{what}, signed", form(put(split(package)[0], at, value))


def wrong_keys(maker, _step):
    """Every key of the device named for a good signature, names that lead elsewhere, and signatures of others."""
    names = [*maker.keys, b"link", b"directory", b"missing", b"../outside", b"./maker", b".hidden", b".."]
    names += [b"directory.key/../maker", b"keys/maker", b"/etc/hosts", b"maker.key", b"MAKER", b""]
    names += [b"maker.key\0", b" maker", b"maker ", b"mak er", b"maker\tx", b"m" * 300]
    for key in names:
        for prefix in (b"", DIGEST_INFO):
            yield f"key {key}, {len(prefix)} bytes before", trailer_sign(maker.body, maker.pair, prefix, key=key)
    for pair in (maker.other, maker.three, maker.short):
        yield f"head signed by {pair.pem}", head_sign(maker.body, pair)
        for key in (b"maker", b"long", b"other", b"three", b"three-long", b"short"):
            yield f"signed by {pair.pem} for {key}", trailer_sign(maker.body, pair, key=key)
    padded = b"\0\x01" + b"\xff" * 221 + b"\0" + hashlib.sha256(maker.body).digest()
    for value in (b"\0", b"\x01", b"\0" * 256, b"\0" * 255 + b"\x01", b"\xff" * 256, padded):
        for key in maker.keys:
            yield f"signature {value[-2:]} for {key}", maker.body + trailer(value, key=key)


MARKERS = [rb"--=</%s %sSigned File Fingerprint\>=--" % (a, b) for a in (b"Begin", b"End") for b in (b"", b"Kelvane ")]


def trailers(maker, _step):
    """The trailer's lines doubled, missing, moved, mixed, renamed; its lengths and its signature's text wrong."""
    body = maker.body
    good = maker.pair.sign(hashlib.sha256(body).digest())
    whole = trailer(good)

    lines = trailer_lines(good)

    def with_line(at, changed):
        return body + join_trailer(lines[:at] + changed + lines[at + 1 :])

    for at, line in enumerate(lines):
        changes = [[line + end] for end in (b" ", b"\0", b"\r")] + [[before, line] for before in (line, b"", *MARKERS)]
        for changed in [[], [b" " + line], [line.lower()], *changes, *([marker] for marker in MARKERS)]:
            yield f"line {at} becomes {changed}", with_line(at, changed)
        for other in range(at):
            swapped = lines[:other] + [line] + lines[other + 1 : at] + [lines[other]] + lines[at + 1 :]
            yield f"lines {other}, {at} swapped", body + join_trailer(swapped)
    for name in (b"sha1", b"SHA256", b"sha256x", b"sha25", b"md5", b"", b"sha256 sha256"):
        yield f"hash {name}", with_line(3, [b"Hash: " + name])
    text = base64.b64encode(good)
    texts = [b"", b"====", text[:-1], text[:-2], text[:-3] + b"===", text + b"AAAA", text + b"AA=="]
    texts += [text[:64] + odd + text[64:] for odd in (b"=", b" ", b"\t", b"\n")]
    texts += [b"*" + text[1:], b"\xe9" + text[1:], text.replace(b"+", b"-").replace(b"/", b"_")]
    for text in [*texts, b"A" * 2048, b"A" * 2052]:
        yield f"signature text {text}", with_line(4, [b"Signature: " + text])
    size = len(whole)
    counts = (0, 1, size - 1, size, size + 1, len(body) + size, len(body) + size - HEAD, len(body), 999999)
    digits = [b"%06d" % count for count in counts]
    digits += [form % size for form in (b"%05d", b"%07d", b"%d", b"%6d", b"-%05d", b"+%05d", b"0x%04x")] + [b""]
    for first in digits:
        for last in digits:
            yield f"lengths {first} {last}", body + join_trailer(lines, (first, last))
    for what, signature in {"255": good[1:], "cut": good[:-1], "257": good + b"\0", "led by 0": b"\0" + good}.items():
        yield f"signature of {what} bytes", body + trailer(signature)
    for at in (0, HEAD, HEAD + 1, len(body) - 1):
        yield f"trailer at {at}", body[:at] + whole + body[at:]
        yield f"trailer at {at} and at the end", body[:at] + whole + body[at:] + whole
    for surplus in (b"\0", b"\n", b"X"):
        yield f"{surplus} behind the trailer", body + whole + surplus
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
    """A package with a trailer behind a head of the forger's own, as one key serves both forms; a file in that head."""
    for order in ("trailer", "host"):
        body = split(maker.valid[order])[0]
        genuine = maker.pair.sign(hashlib.sha256(body).digest())
        head = put(put(body[:HEAD], 3104, 0), 3108, len(genuine))
        for entry in rows(body):
            head = put(head, entry + 4, word(body, entry + 4) + HEAD)
        head = renew(head[:3120] + genuine.ljust(2048, b"\0") + head[5168:])
        yield f"{order}: its trailer's signature in the head", head + body
        yield f"{order}: with the trailer", head + body + trailer(genuine)
    package = maker.valid["head"]
    file = package[word(package, 36) :][: word(package, 40)]
    yield "a file in words that nobody signs", put(package[:5184] + file + package[5184 + len(file) :], 36, 5184)


FILES = [
    f"[{kind}]\ndevice-tag: 0x51\ncompression: {packing}\n{data}\n"
    for kind in ("description", "compatibility", "image", "file 0x1234")
    for packing in ("none", "none", "7z")
    for data in ("file: /dev/null", "text:", "text: [boot]\ntext: 7.1", "text: " + 500 * "x")
]


def any_package(maker, chance):
    """A good package of any form, byte orders, and number and order of files."""
    files = chance.choices(FILES, k=chance.choice((0, 1, 2, 3, 7, 128)))
    head, body = (maker.build(order, *files) for order in chance.choices(("big-endian", "host"), k=2))
    return chance.choice([*maker.forms.values()])(head[:HEAD] + body[HEAD:])


def damaged(package, chance, others):
    """A package changed in one place: a word, a byte, a part that goes, comes twice or comes from another package."""
    at = chance.choice(list(words_that_decide(package)))
    now = int.from_bytes(package[at : at + 4], "big")
    first, last = sorted(max(chance.choice(borders(package)) + chance.choice((0, 0, -1, 1)), 0) for _ in range(2))
    value = chance.choice((*EXTREMES, now + 1, now - 1, now ^ 1 << chance.randrange(32), len(package), first))
    byte, other = chance.randrange(len(package)), chance.choice(others)
    return chance.choice((
        *[package[:at] + (value & 0xFFFFFFFF).to_bytes(4, "big") + package[at + 4 :]] * 2,
        package[:byte] + chance.randbytes(1) + package[byte + 1 :],
        package[:first] + package[last:],
        package[:last] + package[first:],
        split(package)[0] + split(other)[1],
        package[:first] + other[first:],
    ))


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
            package = chance.choice([*maker.forms.values()])(split(package)[0])
        yield f"package {number}, damaged", package


GROUPS = (other_form, flipped_bytes, words, wrong_keys, trailers, other_blocks, damaged_grammar)
