"""A maker of packages with a private key, who can sign whatever he likes, and the keys of the device he makes for."""

import base64
import functools
import hashlib
import os
import re
import struct
import subprocess
from pathlib import Path

from independent_judge import HEAD, HEAD_KEY, crc_hqx, order_of

PRODUCT_TAG = 0x5100
DIGEST_INFO = bytes.fromhex("3031300d060960864801650304020105000420")
FILES = """
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
        run("openssl", "genrsa", "-traditional", "-out", self.pem, *options)
        fields = re.findall(rb"INTEGER +:(\w+)", run("openssl", "asn1parse", "-in", self.pem))
        _, self.modulus, self.exponent, _, *self.parts = (int(digits, 16) for digits in fields)

    @functools.cache
    def sign(self, block):
        """Pads a block and does the private operation on it, by the Chinese remainder theorem."""
        p, q, p_exponent, q_exponent, coefficient = self.parts
        size = self.modulus.bit_length() // 8
        number = int.from_bytes(b"\x00\x01" + (b"\x00" + block).rjust(size - 2, b"\xff"), "big")
        p_part, q_part = pow(number, p_exponent, p), pow(number, q_exponent, q)
        return (q_part + (p_part - q_part) * coefficient % p * q).to_bytes(size, "big")


def device_key(modulus, exponent, size=514):
    return b"\x08\x00".rjust(size - 512, b"\0") + modulus.to_bytes(256, "big") + exponent.to_bytes(256, "big")


def split(package):
    """A package less its trailer, and the trailer."""
    at = package.rfind(b"--=</Begin ")
    return (package, b"") if at < 0 else (package[:at], package[at:])


def trailer_lines(signature, key=b"maker", word=b""):
    return [
        rb"--=</Begin %sSigned File Fingerprint\>=--" % word,
        b"Fingerprint Length: " + SIX_DIGITS,
        b"Key: " + key,
        b"Hash: sha256",
        b"Signature: " + base64.b64encode(signature),
        b"Fingerprint Length: " + SIX_DIGITS,
        rb"--=</End %sSigned File Fingerprint\>=--" % word,
    ]


def join_trailer(lines, lengths=None):
    """A trailer of these lines; its two lengths are right unless they are given."""
    body = b"\n".join([*lines, b""])
    first, last = lengths or [b"%06d" % len(body)] * 2
    return body.replace(SIX_DIGITS, first, 1).replace(SIX_DIGITS, last)


def trailer(signature, **fields):
    return join_trailer(trailer_lines(signature, **fields))


def put(package, offset, value):
    """Writes a word in the package's own byte order and makes the CRC of the head fit."""
    value = struct.pack(order_of(package) + "I", value & 0xFFFFFFFF)
    return renew(package[:offset] + value + package[offset + 4 :])


def renew(package):
    """Makes the CRC of a head fit."""
    return package[:6176] + struct.pack(order_of(package) + "I", crc_hqx(package[:6176], 0)) + package[HEAD:]


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
        self.mkpkg, self.directory = mkpkg, directory
        self.source, self.target = (os.path.join(directory, "valid" + end) for end in (".pkg", ".bin"))
        self.key_directory = os.path.join(directory, "keys")
        self.pair, self.other = (KeyPair(directory, name, "2048") for name in ("maker", "other"))
        self.three = KeyPair(directory, "three", "-3", "2048")
        self.short = KeyPair(directory, "short", "1024")
        self.forms = {
            "trailer": lambda body: trailer_sign(body, self.pair),
            "vendor": lambda body: trailer_sign(body, self.pair, DIGEST_INFO, key=b"long", word=b"Kelvane "),
            "head": lambda body: head_sign(body, self.pair),
        }
        self.body = self.build("big-endian", FILES)
        self.valid = {
            "trailer": self.sign(self.body, "--key-name=maker"),
            "vendor": self.sign(self.body, "--key-name=long", "--markers=kelvane", "--digest-info"),
            "head": self.sign(self.body, "--in-head"),
            "host": self.sign(self.build("host", FILES), "--key-name=maker"),
        }
        self.keys = self.write_keys()

    def build(self, order, *files):
        """An unsigned package, made by the package tool of files that are described."""
        Path(self.source).write_text(f"product-tag: {PRODUCT_TAG}\nbyte-order: {order}\n" + "".join(files))
        run(self.mkpkg, "build", "--force", self.source, self.target)
        return Path(self.target).read_bytes()

    def sign(self, body, *form):
        """Has the package tool sign a package."""
        Path(self.target).write_bytes(body)
        run(self.mkpkg, "sign", *form, "--private-key=" + self.pair.pem, self.target)
        return Path(self.target).read_bytes()

    def write_keys(self):
        """Fills the device's key directory. @return its plain files that a package may name."""
        n, e = self.pair.modulus, self.pair.exponent
        good = device_key(n, e)
        keys = {
            b"maker": good,
            b"long": device_key(n, e, 516),
            HEAD_KEY: good,
            b"other": device_key(self.other.modulus, e),
            b"three": device_key(self.three.modulus, 3),
            b"three-long": device_key(self.three.modulus, 3, 516),
            b"short": device_key(self.short.modulus, e),
        }
        for value in (0, 1, 2, n - 1, n, 2**2048 - 1):
            for size in (514, 516):
                keys[b"modulus-%d-%d" % (value % 1000, size)] = device_key(value, e, size)
                keys[b"exponent-%d-%d" % (value % 1000, size)] = device_key(n, value, size)
        for size in (0, 1, 513, 515, 517, 1028):
            keys[b"size-%d" % size] = (good + good)[len(good) * 2 - size :]
        os.mkdir(self.key_directory)
        for name, key in {**keys, b"../outside": good, b".hidden": good}.items():
            Path(self.key_directory, name.decode() + ".key").write_bytes(key)
        os.symlink("maker.key", os.path.join(self.key_directory, "link.key"))
        os.mkdir(os.path.join(self.key_directory, "directory.key"))
        return keys
