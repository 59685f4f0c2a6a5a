"""The command line of orvane serve."""
import shutil
import socket
import ssl
import subprocess
import sys

import pytest


def orvane_serve(*words):
    return subprocess.run([sys.executable, "-m", "orvane.serve", *words], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=60)


def test_address_for_others_needs_a_certificate():
    ended = orvane_serve("--listen", "0.0.0.0", "--port", "0")
    assert ended.returncode == 2
    assert ended.stderr.endswith("--listen for others needs --certificate and --key: the token must not be read on "
                                 "the way\n")


def test_certificate_goes_with_its_key():
    ended = orvane_serve("--certificate", "it.pem")
    assert (ended.returncode, ended.stderr.splitlines()[-1]) == (
        2, "orvane serve: error: --certificate and --key go together")


@pytest.mark.parametrize("option", ["--log", "--run"])
def test_file_that_is_not_there_is_told(option):
    ended = orvane_serve(option, "no-such-file", "--port", "0")
    assert (ended.returncode, ended.stdout) == (1, "")
    assert "No such file or directory: 'no-such-file'" in ended.stderr


def test_map_that_is_wrong_is_told(tmp_path):
    (tmp_path / "it.json").write_text("{}")
    ended = orvane_serve("--map", str(tmp_path / "it.json"), "--port", "0")
    assert ended.returncode == 1
    assert "it.json" in ended.stderr and "format" in ended.stderr


def test_token_that_is_short_is_refused(tmp_path):
    (tmp_path / "token").write_text("1234\n")
    ended = orvane_serve("--token-file", str(tmp_path / "token"), "--port", "0")
    assert (ended.returncode, ended.stderr) == (
        1, f"orvane: serve: {tmp_path}/token: a token has 16 characters or more\n")


@pytest.mark.skipif(shutil.which("openssl") is None, reason="needs openssl")
def test_board_is_shown_to_others_over_tls_under_the_name_of_the_host(tmp_path):
    certificate, key = tmp_path / "it.pem", tmp_path / "it.key"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", str(key), "-out",
                    str(certificate), "-subj", "/CN=lab-pc", "-addext", "subjectAltName=DNS:lab-pc", "-days", "2"],
                   check=True, stderr=subprocess.DEVNULL)
    process = subprocess.Popen([sys.executable, "-m", "orvane.serve", "--port", "0", "--listen", "0.0.0.0", "--name",
                                "lab-pc", "--certificate", str(certificate), "--key", str(key)], text=True,
                               stdout=subprocess.PIPE)
    try:
        address = process.stdout.readline().strip()
        assert address.startswith("https://lab-pc:")
        port = address.split(":")[2].partition("/")[0]
        with socket.create_connection(("127.0.0.1", int(port)), timeout=30) as plain:
            trusting = ssl.create_default_context(cafile=str(certificate))
            with trusting.wrap_socket(plain, server_hostname="lab-pc") as connection:
                path = address.partition(port)[2]
                connection.sendall(f"GET {path} HTTP/1.1\r\nHost: lab-pc:{port}\r\n\r\n".encode())
                told = connection.recv(65536).decode()
    finally:
        process.terminate()
        process.wait(30)
        process.stdout.close()
    assert told.startswith("HTTP/1.1 200") and "; Secure" in told
