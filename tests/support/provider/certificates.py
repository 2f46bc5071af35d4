"""An authority for tests, and the certificates that it gives: good, expired, and for another name."""
import datetime
import ipaddress
import pathlib

from cryptography import x509
from cryptography.hazmat.primitives import hashes, serialization
from cryptography.hazmat.primitives.asymmetric import ec
from cryptography.x509.oid import NameOID

_DAY = datetime.timedelta(days=1)


def _name(text: str) -> x509.Name:
    return x509.Name([x509.NameAttribute(NameOID.COMMON_NAME, text)])


def _signed(subject: str, issuer: str, key, issuer_key, days: int, extensions: list) -> x509.Certificate:
    now = datetime.datetime.utcnow()
    builder = (x509.CertificateBuilder().subject_name(_name(subject)).issuer_name(_name(issuer))
               .public_key(key.public_key()).serial_number(x509.random_serial_number())
               .not_valid_before(now - 30 * _DAY).not_valid_after(now + days * _DAY))
    for extension in extensions:
        builder = builder.add_extension(extension, critical=False)
    return builder.sign(issuer_key, hashes.SHA256())


def _pem(certificate: x509.Certificate) -> bytes:
    return certificate.public_bytes(serialization.Encoding.PEM)


def _pem_key(key) -> bytes:
    return key.private_bytes(serialization.Encoding.PEM, serialization.PrivateFormat.PKCS8,
                             serialization.NoEncryption())


def make(folder: pathlib.Path) -> dict[str, pathlib.Path]:
    """Writes authority.pem, which a client is to trust, and a file with certificate and key for each kind."""
    authority_key = ec.generate_private_key(ec.SECP256R1())
    authority = _signed("Test authority", "Test authority", authority_key, authority_key, 30,
                        [x509.BasicConstraints(ca=True, path_length=None)])
    (folder / "authority.pem").write_bytes(_pem(authority))
    here = [x509.DNSName("localhost"), x509.IPAddress(ipaddress.ip_address("127.0.0.1"))]
    kinds = {"good": (here, 10), "expired": (here, -1), "wrong": ([x509.DNSName("elsewhere.example")], 10)}
    files = {}
    for kind, (names, days) in kinds.items():
        key = ec.generate_private_key(ec.SECP256R1())
        certificate = _signed(kind, "Test authority", key, authority_key, days, [x509.SubjectAlternativeName(names)])
        files[kind] = folder / f"{kind}.pem"
        files[kind].write_bytes(_pem(certificate) + _pem_key(key))
    return files
