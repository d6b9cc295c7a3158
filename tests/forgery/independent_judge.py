"""Judges packages without a line of the shell's code, so that two people would have to make the same mistake."""

import base64
import hashlib
import re
import struct
from binascii import crc_hqx  # CRC-16/XMODEM

HEAD = 6180
FILE_HEAD = 340
HEAD_MARK, FILE_MARK = 5168, 44  # of the byte order
TRAILER_FORMAT = 0xFF00A105
HOST_ORDER = STORED = 0xFFFFFFFF
HEAD_KEY = b"digital_sign_old_public"

TRAILER = re.compile(
    rb"--=</Begin (?P<word>(?:Kelvane )?)Signed File Fingerprint\\>=--\nFingerprint Length: (?P<length>[0-9]{6})\n"
    rb"Key: (?P<key>[^\x00\s]+)\nHash: sha256\nSignature: (?P<signature>[^\x00\s]+)\n"
    rb"Fingerprint Length: (?P=length)\n--=</End (?P=word)Signed File Fingerprint\\>=--\n\Z"
)
BASE64 = re.compile(rb"(?:[A-Za-z0-9+/]{4})*(?:[A-Za-z0-9+/]{2}==|[A-Za-z0-9+/]{3}=)?")


def order_of(data, mark=HEAD_MARK):
    return "=" if struct.unpack_from("=I", data, mark)[0] == HOST_ORDER else ">"


def word(data, offset, mark=HEAD_MARK):
    return struct.unpack_from(order_of(data, mark) + "I", data, offset)[0]


def key_accepts(key, signature, digest):
    """Whether a device's key file accepts a signature for a digest."""
    if len(key) not in (514, 516):
        return False
    modulus = int.from_bytes(key[-512:-256], "big")
    exponent = int.from_bytes(key[-256:], "big")
    size = (modulus.bit_length() + 7) // 8
    number = int.from_bytes(signature, "big")
    usable = modulus % 2 == exponent % 2 == 1 and (65537 if len(key) == 516 else 2) <= exponent < modulus
    if not usable or len(signature) > size or number >= modulus:
        return False
    # What RSA and PKCS #1 type 1 padding leave of it.
    block = re.fullmatch(rb"\x00\x01\xff{8,}\x00(.*)", pow(number, exponent, modulus).to_bytes(size, "big"), re.S)
    return block is not None and digest == (block[1] if len(key) == 514 else block[1][-32:])


def claim(package):
    """Which bytes are signed, with which signature and key; None when the package makes no claim."""
    if word(package, 3104) != TRAILER_FORMAT:
        length = word(package, 3108)
        behind = package[HEAD : 2 * HEAD]
        holds_package = len(behind) == HEAD and behind[3104:3108] in (b"\xff\x00\xa1\x05", b"\x05\xa1\x00\xff")
        return None if length > 2048 or holds_package else (HEAD, len(package), package[3120 : 3120 + length], HEAD_KEY)
    match = TRAILER.search(package)
    if len(package) < HEAD + word(package, 28) or not match or int(match["length"]) != len(match[0]):
        return None
    if match.start() < HEAD or len(match["signature"]) > 2048 or not BASE64.fullmatch(match["signature"]):
        return None
    return 0, match.start(), base64.b64decode(match["signature"]), match["key"]


def contained(package, words, signed):
    """What the device hands out of the file of a table's row: its name and data; "-" for nothing."""
    _, offset, total, check_b, check_a, _ = words
    begin, end = signed
    if offset < begin or offset + FILE_HEAD > end:
        return "-"
    head = package[offset : offset + FILE_HEAD]
    head_a, stored, data_length, head_b, compression = (word(head, at, FILE_MARK) for at in (12, 24, 328, 332, 336))
    data = offset + FILE_HEAD
    belongs = (head_a, head_b, data_length + FILE_HEAD) == (check_a, check_b, total)
    if not belongs or compression != STORED or stored == 0 or data + stored > end:
        return "-"
    name = head[104:328].split(b"\0")[0]
    return (name + b"\0" + package[data : data + stored]).hex()


def judge(package, keys, product_tag):
    """None for a package that must be refused, otherwise what is handed out of each row of its table.

    keys: name of a key -> bytes of its file; a key that is no plain file is left out.
    """
    if len(package) < HEAD:
        return None
    count, tag, attribute = (word(package, at) for at in (4, 8, 5176))
    if word(package, HEAD_MARK) not in (0, HOST_ORDER) or count > 128 or tag != product_tag or product_tag == 0xFFFFFFFF:
        return None
    if (attribute & 1 == 1) != (attribute == 1) or word(package, 6176) != crc_hqx(package[:6176], 0):
        return None
    found = claim(package)
    if found is None:
        return None
    begin, end, signature, name = found
    is_plain = not name.startswith(b".") and b"/" not in name and name in keys
    if not is_plain or not key_accepts(keys[name], signature, hashlib.sha256(package[begin:end]).digest()):
        return None
    rows = [struct.unpack_from(order_of(package) + "6I", package, 32 + 24 * row) for row in range(count)]
    return [contained(package, row, (begin, end)) for row in rows]
