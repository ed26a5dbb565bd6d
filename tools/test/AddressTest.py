"""Station files on a server, which is one of this machine."""

import http.server
import os
import re
import shutil
import socket
import ssl
import subprocess
import threading
import time
import unittest

from programs import ProgramTest


class RangeHandler(http.server.BaseHTTPRequestHandler):
    """Files of a folder, in full or a range of bytes."""

    protocol_version = "HTTP/1.1"

    def log_message(self, *args):
        pass

    def do_HEAD(self):
        self.do_GET()

    def do_GET(self):
        # ROOT asks as one asks a proxy, for the whole address.
        path = os.path.join(self.server.folder, os.path.basename(self.path))
        if not os.path.exists(path):
            return self.send_error(404)
        with open(path, "rb") as file:
            content = file.read()
        asked = re.fullmatch(r"bytes=(\d+)-(\d+)", self.headers.get("Range", ""))
        begin, end = (int(asked[1]), int(asked[2]) + 1) if asked else (0, len(content))
        body = content[begin:end]
        self.send_response(206 if asked else 200)
        if asked:
            self.send_header("Content-Range", f"bytes {begin}-{end - 1}/{len(content)}")
        self.send_header("Accept-Ranges", "bytes")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command == "GET":
            self.server.n_sent += len(body)
            self.wfile.write(body)


class AddressTest(ProgramTest):
    def serve(self, certificate=None):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), RangeHandler)
        server.daemon_threads = True
        server.folder, server.n_sent = self.folder, 0
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            server.socket = context.wrap_socket(server.socket, server_side=True)
        thread = threading.Thread(target=server.serve_forever, args=(0.05,))
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.server = server
        return f"{'https' if certificate else 'http'}://127.0.0.1:{server.server_address[1]}"

    def assert_reads(self, address):
        self.simulate("run.root", "-n", "20")
        expected = self.run_program("stn-verify", "run.root")
        code, output, error = self.run_program("stn-verify", f"{address}/run.root")
        self.assertEqual((code, output.replace(address + "/", ""), error), expected)

    def test_reads_every_event_over_http(self):
        self.assert_reads(self.serve())

    def test_reads_every_event_over_https(self):
        if shutil.which("openssl") is None:
            self.skipTest("openssl is needed for a certificate")
        pem = self.path("server.pem")
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", pem, "-out", pem + ".crt",
             "-days", "2", "-subj", "/CN=127.0.0.1"], check=True, capture_output=True,
        )
        with open(pem, "ab") as file:
            file.write(self.read("server.pem.crt"))
        self.assert_reads(self.serve(pem))

    def test_fetches_only_the_headers_for_a_table(self):
        address = self.serve()
        self.simulate("run.root", "-n", "60")
        expected = self.run_program("stn-headers", "run.root")
        self.assertEqual(self.run_program("stn-headers", f"{address}/run.root"), expected)
        self.assertLess(self.server.n_sent, len(self.read("run.root")) / 3)

    def test_joins_files_from_a_server(self):
        address = self.serve()
        self.simulate("run.root", "-n", "5")
        self.assertEqual(
            self.run_program("stn-merge", f"{address}/run.root", "-o", "new.root"),
            (0, "new.root: 5 of 5 events, with run header, with run trailer\n", ""),
        )

    def test_reads_a_file_that_was_not_closed(self):
        address = self.serve()
        self.make("unclosed", "unclosed.root")
        self.assertEqual(
            self.run_program("stn-headers", f"{address}/unclosed.root")[::2],
            (
                1,
                f"stn-headers: warning: {address}/unclosed.root was not closed by its writer, or is cut short; "
                "going on with what could be recovered, 3 events\n",
            ),
        )

    def test_says_what_is_damaged(self):
        address = self.serve()
        self.simulate("run.root", "-n", "3")
        content = bytearray(self.read("run.root"))
        place = content.index(b"fFADCData\x0cStnEventTree") + 3000
        content[place : place + 6] = b"damage"
        self.write("run.root", content)
        code, output, error = self.run_program("stn-verify", f"{address}/run.root")
        self.assertEqual((code, output), (1, ""))
        self.assertIn(f"{address}/run.root is damaged: event 0 cannot be read (", error)

    def test_says_that_there_is_no_such_file(self):
        address = self.serve()
        code, output, error = self.run_program("stn-verify", f"{address}/none.root")
        self.assertEqual((code, output), (3, ""))
        self.assertRegex(error, rf"^stn-verify: {address}/none\.root cannot be opened \(.+\); check the address\n\Z")

    def test_says_that_there_is_no_server(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            address = f"http://127.0.0.1:{free.getsockname()[1]}/run.root"
            code, output, error = self.run_program("stn-verify", address)
        self.assertEqual((code, output), (3, ""))
        self.assertIn(f"stn-verify: {address} cannot be opened (", error)

    def test_says_that_this_root_cannot_read_such_addresses(self):
        self.assertEqual(
            self.run_program("stn-verify", "gopher://127.0.0.1/run.root"),
            (
                3,
                "",
                "stn-verify: gopher://127.0.0.1/run.root cannot be opened: this ROOT reads no gopher addresses; "
                "copy the file first\n",
            ),
        )

    def test_refuses_an_address_where_the_whole_file_is_needed(self):
        self.assertEqual(
            self.run_program("stn-recover", "http://127.0.0.1/run.root", "new.root"),
            (
                2,
                "",
                "stn-recover: http://127.0.0.1/run.root is an address; copy the file first, this program needs all "
                "of it\n",
            ),
        )

    @unittest.skipUnless(shutil.which("xrootd"), "no xrootd on this machine")
    def test_reads_every_event_over_xrootd(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self.write("xrootd.cfg", f"xrd.port {port}\nall.export {self.folder}\nall.adminpath {self.folder}/admin\n".encode())
        as_nobody = ["-R", "nobody"] if os.geteuid() == 0 else []
        os.chmod(self.folder, 0o777)
        server = subprocess.Popen(
            ["xrootd", *as_nobody, "-c", "xrootd.cfg", "-l", "xrootd.log"], cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        for _ in range(200):
            with socket.socket() as probe:
                if probe.connect_ex(("127.0.0.1", port)) == 0:
                    break
            time.sleep(0.05)
        self.assert_reads(f"root://127.0.0.1:{port}/{self.folder}")


if __name__ == "__main__":
    unittest.main()
