"""A maker of packages with a private key, who can sign whatever he likes, and the keys of the device he makes for."""

import base64
import hashlib
import os
import re
import struct
import subprocess

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


class KeyPair:
    """An RSA key pair, made by the openssl command and used with Python's own numbers."""

    def __init__(self, directory, name, *options):
        self.pem = os.path.join(directory, name + ".pem")
        subprocess.run(["openssl", "genrsa", "-out", self.pem, *options], check=True, capture_output=True)
        command = ["openssl", "rsa", "-in", self.pem, "-noout", "-text"]
        text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        numbers = dict(re.findall(r"^(\w+):\n((?: +[0-9a-f:]+\n)+)", text, re.M))
        self.modulus, self.p, self.q, self.dp, self.dq, self.qinv = (
            int(re.sub(r"[\s:]", "", numbers[n]), 16)
            for n in ("modulus", "prime1", "prime2", "exponent1", "exponent2", "coefficient")
        )
        self.exponent = int(re.search(r"publicExponent: (\d+)", text).group(1))
        self.size = (self.modulus.bit_length() + 7) // 8
        self.signed = {}  # what was signed already

    def raw(self, block):
        """The private operation on a whole block."""
        if block not in self.signed:
            number = int.from_bytes(block, "big")
            p_part, q_part = pow(number, self.dp, self.p), pow(number, self.dq, self.q)
            number = q_part + (p_part - q_part) * self.qinv % self.p * self.q
            self.signed[block] = number.to_bytes(self.size, "big")
        return self.signed[block]

    def sign(self, block):
        return self.raw(b"\x00\x01" + b"\xff" * (self.size - 3 - len(block)) + b"\x00" + block)

    def device_key(self, size=514):
        return device_key(self.modulus, self.exponent, size)


def device_key(modulus, exponent, size=514):
    return b"\x08\x00".rjust(size - 512, b"\0") + modulus.to_bytes(256, "big") + exponent.to_bytes(256, "big")


def trailer(signature, key=b"maker", word=b"", **fields):
    """A trailer whose lengths are right unless `fields` says otherwise; any line can be replaced."""
    text = fields.get("text", base64.b64encode(signature))
    lines = [
        fields.get("begin", rb"--=</Begin %sSigned File Fingerprint\>=--" % word),
        b"Fingerprint Length: %LENGTH1%",
        b"Key: " + key,
        fields.get("hash", b"Hash: sha256"),
        b"Signature: " + text,
        b"Fingerprint Length: %LENGTH2%",
        fields.get("end", rb"--=</End %sSigned File Fingerprint\>=--" % word),
    ]
    if "lines" in fields:
        lines = fields["lines"](lines)
    body = fields.get("line_end", b"\n").join(lines) + b"\n"
    body = body.replace(b"%LENGTH1%", b"%06d").replace(b"%LENGTH2%", b"%06d")
    count = body.count(b"%06d")
    length = len(body) + 2 * count
    given = fields.get("lengths", (b"%06d" % length,) * 2)
    for text in given[:count]:
        body = body.replace(b"%06d", text, 1)
    return body


def put(package, offset, value):
    """Writes a word in the package's own byte order and makes the CRC of the head fit."""
    order = order_of(package)
    package = bytearray(package)
    struct.pack_into(order + "I", package, offset, value & 0xFFFFFFFF)
    return renew(bytes(package))


def word(package, offset):
    return struct.unpack_from(order_of(package) + "I", package, offset)[0]


def order_of(package):
    return "=" if struct.unpack_from("=I", package, 5168)[0] == HOST_ORDER else ">"


def renew(package):
    """Makes the CRC of a head fit."""
    if len(package) < HEAD:
        return package
    return package[:6176] + struct.pack(order_of(package) + "I", crc16(package[:6176])) + package[HEAD:]


def head_sign(package, pair, block=None):
    """Signs in the head: a digest, or any block."""
    package = put(package, 3104, 0)
    signature = pair.sign(hashlib.sha256(package[HEAD:]).digest() if block is None else block)
    package = put(package, 3108, len(signature))
    return renew(package[:3120] + signature.ljust(2048, b"\0") + package[5168:])


def trailer_sign(body, pair, prefix=b"", **fields):
    """Signs an unsigned package of trailer form with a trailer."""
    return body + trailer(pair.sign(prefix + hashlib.sha256(body).digest()), **fields)


class Maker:
    """Keys, the device's key directory and valid packages of every kind."""

    def __init__(self, mkpkg, directory):
        self.directory = directory
        self.pair = KeyPair(directory, "maker", "2048")
        self.other = KeyPair(directory, "other", "2048")
        self.three = KeyPair(directory, "three", "-3", "2048")
        self.short = KeyPair(directory, "short", "1024")
        self.bodies = {order: self.build(mkpkg, order) for order in ("big-endian", "host")}
        self.body = self.bodies["big-endian"]
        self.tool_signed = self.sign_with_tool(mkpkg)
        self.valid = {
            "trailer": trailer_sign(self.body, self.pair),
            "vendor": trailer_sign(self.body, self.pair, DIGEST_INFO, key=b"long", word=b"Kelvane "),
            "head": head_sign(self.body, self.pair),
            "host": trailer_sign(self.bodies["host"], self.pair),
        }
        self.keys = self.make_keys()
        self.key_directory = os.path.join(directory, "keys")
        self.write_keys()

    def build(self, mkpkg, order):
        source, target = (os.path.join(self.directory, order + end) for end in (".pkg", ".bin"))
        with open(source, "w") as file:
            file.write(DESCRIPTION % order)
        subprocess.run([mkpkg, "build", source, target], check=True, capture_output=True)
        with open(target, "rb") as file:
            package = file.read()
        return put(package, 3104, TRAILER_FORMAT)

    def sign_with_tool(self, mkpkg):
        """The same package signed by the tool, whose form must be what this maker's own is."""
        target = os.path.join(self.directory, "tool.bin")
        with open(target, "wb") as file:
            file.write(self.body)
        command = [mkpkg, "sign", "--key-name=maker", "--private-key=" + self.pair.pem, target]
        subprocess.run(command, check=True, capture_output=True)
        with open(target, "rb") as file:
            return file.read()

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
        weak = {"modulus": (lambda v: (v, e)), "exponent": (lambda v: (n, v))}
        for name, numbers in weak.items():
            for value in (0, 1, 2, n - 1, n, 2**2048 - 1):
                for size in (514, 516):
                    key_name = f"{name}-{str(value)[:4]}-{size}"
                    keys[key_name.encode()] = device_key(*numbers(value), size)
        for size in (0, 1, 513, 515, 517, 1028):
            keys[b"size-%d" % size] = (good + good)[:size]
        return keys

    def write_keys(self):
        os.mkdir(self.key_directory)
        files = dict(self.keys)
        files[b"../outside"] = files[b".hidden"] = self.keys[b"maker"]
        for name, key in files.items():
            with open(os.path.join(self.key_directory, name.decode() + ".key"), "wb") as file:
                file.write(key)
        os.symlink("maker.key", os.path.join(self.key_directory, "link.key"))
        os.mkdir(os.path.join(self.key_directory, "directory.key"))
