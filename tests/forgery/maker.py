"""A maker of packages with a private key, who can sign whatever he likes, and the keys of the device he makes for."""

import base64
import hashlib
import os
import re
import struct
import subprocess
from pathlib import Path

from independent_judge import HEAD, HEAD_KEY, HOST_ORDER, TRAILER_FORMAT, crc16

PRODUCT_TAG = 0x5100
DIGEST_INFO = bytes.fromhex("3031300d060960864801650304020105000420")
DESCRIPTION = """
product-tag: 0x5100
byte-order: %s
[description]
text: Product version: R1
[compatibility]
text: [boot]
text: 7.1
[image]
device-tag: 0x51
name: a.cpio.gz
text: an image
[image]
device-tag: 0x52
name: b.cpio.gz
text: another image, which is a little longer
"""
SIX_DIGITS = b"######"  # where a trailer's line has its length


def run(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


class KeyPair:
    """An RSA key pair, made by the openssl command and used with Python's own numbers."""

    def __init__(self, directory, name, *options):
        self.pem = os.path.join(directory, name + ".pem")
        run("openssl", "genrsa", "-out", self.pem, *options)
        text = run("openssl", "rsa", "-in", self.pem, "-noout", "-text").decode()
        self.exponent = int(re.search(r"publicExponent: (\d+)", text)[1])
        fields = re.findall(r"^(\w+):\n((?: +[0-9a-f:]+\n)+)", text, re.M)
        self.numbers = {name: int(re.sub(r"[\s:]", "", digits), 16) for name, digits in fields}
        self.modulus = self.numbers["modulus"]
        self.size = (self.modulus.bit_length() + 7) // 8
        self.signed = {}  # what was signed already

    def sign(self, block):
        """Pads a block and does the private operation on it, by the Chinese remainder theorem."""
        if block not in self.signed:
            p, q = self.numbers["prime1"], self.numbers["prime2"]
            number = int.from_bytes(b"\x00\x01" + (b"\x00" + block).rjust(self.size - 2, b"\xff"), "big")
            p_part, q_part = pow(number, self.numbers["exponent1"], p), pow(number, self.numbers["exponent2"], q)
            number = q_part + (p_part - q_part) * self.numbers["coefficient"] % p * q
            self.signed[block] = number.to_bytes(self.size, "big")
        return self.signed[block]

    def device_key(self, size=514):
        return device_key(self.modulus, self.exponent, size)


def device_key(modulus, exponent, size=514):
    return b"\x08\x00".rjust(size - 512, b"\0") + modulus.to_bytes(256, "big") + exponent.to_bytes(256, "big")


def trailer(signature, key=b"maker", word=b"", edit=list, lengths=None):
    """A trailer whose lines `edit` may change; its two lengths are right unless they are given."""
    lines = [
        rb"--=</Begin %sSigned File Fingerprint\>=--" % word,
        b"Fingerprint Length: " + SIX_DIGITS,
        b"Key: " + key,
        b"Hash: sha256",
        b"Signature: " + base64.b64encode(signature),
        b"Fingerprint Length: " + SIX_DIGITS,
        rb"--=</End %sSigned File Fingerprint\>=--" % word,
    ]
    body = b"\n".join([*edit(lines), b""])
    first, last = lengths or [b"%06d" % len(body)] * 2
    return body.replace(SIX_DIGITS, first, 1).replace(SIX_DIGITS, last)


def order_of(package):
    return "=" if struct.unpack_from("=I", package, 5168)[0] == HOST_ORDER else ">"


def word(package, offset):
    return struct.unpack_from(order_of(package) + "I", package, offset)[0]


def put(package, offset, value):
    """Writes a word in the package's own byte order and makes the CRC of the head fit."""
    value = struct.pack(order_of(package) + "I", value & 0xFFFFFFFF)
    return renew(package[:offset] + value + package[offset + 4 :])


def renew(package):
    """Makes the CRC of a head fit."""
    return package[:6176] + struct.pack(order_of(package) + "I", crc16(package[:6176])) + package[HEAD:]


def head_sign(package, pair, block=None):
    """Signs in the head: a digest, or any block."""
    signature = pair.sign(hashlib.sha256(package[HEAD:]).digest() if block is None else block)
    package = put(put(package, 3104, 0), 3108, len(signature))
    return renew(package[:3120] + signature.ljust(2048, b"\0") + package[5168:])


def trailer_sign(body, pair, prefix=b"", **fields):
    """Signs an unsigned package of trailer form with a trailer."""
    return body + trailer(pair.sign(prefix + hashlib.sha256(body).digest()), **fields)


class Maker:
    """Keys, the device's key directory and valid packages of every kind."""

    def __init__(self, mkpkg, directory):
        self.directory = directory
        self.key_directory = os.path.join(directory, "keys")
        self.pair = KeyPair(directory, "maker", "2048")
        self.other = KeyPair(directory, "other", "2048")
        self.three = KeyPair(directory, "three", "-3", "2048")
        self.short = KeyPair(directory, "short", "1024")
        self.bodies = {order: self.build(mkpkg, order) for order in ("big-endian", "host")}
        self.body = self.bodies["big-endian"]
        self.valid = {
            "trailer": trailer_sign(self.body, self.pair),
            "vendor": trailer_sign(self.body, self.pair, DIGEST_INFO, key=b"long", word=b"Kelvane "),
            "head": head_sign(self.body, self.pair),
            "host": trailer_sign(self.bodies["host"], self.pair),
        }
        self.keys = self.make_keys()
        self.write_keys()

    def build(self, mkpkg, order):
        source, target = (os.path.join(self.directory, order + end) for end in (".pkg", ".bin"))
        Path(source).write_text(DESCRIPTION % order)
        run(mkpkg, "build", source, target)
        return put(Path(target).read_bytes(), 3104, TRAILER_FORMAT)

    def signed_with_tool(self, mkpkg):
        """The package signed by the tool, whose form must be what this maker's own is."""
        target = os.path.join(self.directory, "tool.bin")
        Path(target).write_bytes(self.body)
        run(mkpkg, "sign", "--key-name=maker", "--private-key=" + self.pair.pem, target)
        return Path(target).read_bytes()

    def make_keys(self):
        n, e = self.pair.modulus, self.pair.exponent
        good = self.pair.device_key()
        keys = {
            b"maker": good,
            b"long": self.pair.device_key(516),
            HEAD_KEY: good,
            b"other": self.other.device_key(),
            b"three": self.three.device_key(),
            b"three-long": self.three.device_key(516),
            b"short": self.short.device_key(),
        }
        for value in (0, 1, 2, n - 1, n, 2**2048 - 1):
            for size in (514, 516):
                keys[b"modulus-%d-%d" % (value % 1000, size)] = device_key(value, e, size)
                keys[b"exponent-%d-%d" % (value % 1000, size)] = device_key(n, value, size)
        for size in (0, 1, 513, 515, 517, 1028):
            keys[b"size-%d" % size] = (good + good)[:size]
        return keys

    def write_keys(self):
        os.mkdir(self.key_directory)
        good = self.keys[b"maker"]
        for name, key in {**self.keys, b"../outside": good, b".hidden": good}.items():
            Path(self.key_directory, name.decode() + ".key").write_bytes(key)
        os.symlink("maker.key", os.path.join(self.key_directory, "link.key"))
        os.mkdir(os.path.join(self.key_directory, "directory.key"))
