"""Who is let in, and what a browser is told to obey."""
import asyncio
import socket

import aiohttp
import pytest


def status_of(served, path="/", headers=None, method="GET"):
    """The status and headers of one request, by somebody without a cookie."""
    async def ask():
        async with aiohttp.ClientSession() as stranger:
            async with stranger.request(method, served.origin + path, headers=headers) as answer:
                return answer.status, answer.headers
    return asyncio.run(ask())


def raw(served, request):
    """What the server answers to these bytes, until it closes or has said enough."""
    with socket.create_connection(("127.0.0.1", served.port), timeout=30) as connection:
        connection.sendall(request)
        return connection.recv(65536).decode()


def test_address_without_its_token_is_refused(serve):
    served = serve()
    for path in ("/", "/?token=", "/?token=guess", "/orvane.js", "/metrics", "/live"):
        assert status_of(served, path, {"Origin": served.origin})[0] == 403, path


def test_token_opens_the_page_and_leaves_a_cookie_that_scripts_and_other_sites_cannot_use(serve):
    served = serve()
    status, headers = status_of(served, f"/?token={served.token}")
    assert status == 200
    cookie = headers["Set-Cookie"]
    assert cookie.startswith(f"orvane-{served.port}=") and served.token not in cookie
    assert "HttpOnly" in cookie and "SameSite=Strict" in cookie and "Path=/" in cookie


def test_each_start_has_a_token_of_its_own(serve):
    assert serve().token != serve("--write").token


def test_every_answer_forbids_scripts_and_frames_from_elsewhere(serve):
    served = serve()
    for path in (f"/?token={served.token}", "/", "/nothing"):
        headers = status_of(served, path)[1]
        policy = headers["Content-Security-Policy"]
        assert "default-src 'none'" in policy and "script-src 'self'" in policy and "unsafe" not in policy
        assert "frame-ancestors 'none'" in policy
        assert headers["X-Content-Type-Options"] == "nosniff"
        assert headers["Referrer-Policy"] == "no-referrer"
        assert "Access-Control-Allow-Origin" not in headers


def test_name_that_somebody_else_points_here_is_refused_even_with_the_token(serve):
    served = serve()
    for host in ("evil.example", f"evil.example:{served.port}", "127.0.0.1", ""):
        assert status_of(served, f"/?token={served.token}", {"Host": host})[0] == 403, host
    assert status_of(served, f"/?token={served.token}", {"Host": f"localhost:{served.port}"})[0] == 200


def test_two_names_in_one_request_are_refused(serve):
    served = serve()
    request = f"GET /?token={served.token} HTTP/1.1\r\nHost: {served.host}\r\nHost: evil.example\r\n\r\n"
    assert raw(served, request.encode()).split()[1] in ("400", "403")


@pytest.mark.parametrize("origin", ["http://evil.example", "null", None])
def test_live_connection_of_a_page_from_elsewhere_is_refused_though_it_has_the_cookie(serve, origin):
    served = serve()

    async def connect():
        async with served.session() as session:
            headers = {} if origin is None else {"Origin": origin}
            with pytest.raises(aiohttp.WSServerHandshakeError) as refused:
                await session.ws_connect(f"{served.origin}/live", headers=headers)
            return refused.value.status
    assert asyncio.run(connect()) == 403


@pytest.mark.parametrize("path", ["/../../../../etc/passwd", "/..%2f..%2fetc/passwd", "/%2e%2e/%2e%2e/etc/passwd",
                                  "//etc/passwd", "/orvane.js/../../etc/passwd", "/index.html%00", "/static/"])
def test_path_leads_to_no_file(serve, path):
    served = serve()
    request = (f"GET {path} HTTP/1.1\r\nHost: {served.host}\r\nAuthorization: Bearer {served.token}\r\n"
               "Connection: close\r\n\r\n")
    answer = raw(served, request.encode())
    assert answer.split()[1] in ("400", "404")
    assert "root:" not in answer


@pytest.mark.parametrize("method", ["POST", "PUT", "DELETE", "OPTIONS", "TRACE"])
def test_other_methods_than_reading_are_refused(serve, method):
    served = serve()
    assert status_of(served, f"/?token={served.token}", method=method)[0] == 405


def test_long_line_and_many_headers_are_refused(serve):
    served = serve()
    host = f"Host: {served.host}\r\n"
    assert raw(served, f"GET /{'x' * 20_000} HTTP/1.1\r\n{host}\r\n".encode()).split()[1] == "400"
    assert raw(served, f"GET / HTTP/1.1\r\n{host}X: {'x' * 20_000}\r\n\r\n".encode()).split()[1] == "400"


def test_token_of_a_file_holds_from_start_to_start_and_is_its_owners_alone(serve, tmp_path):
    file = tmp_path / "token"
    first = serve("--token-file", str(file))
    assert file.stat().st_mode & 0o777 == 0o600
    second = serve("--token-file", str(file))
    assert first.token == second.token == file.read_text().strip()
