#!/usr/bin/env python3
"""A recorder: passes TCP and UDP on between clients and a server, and writes what passes as a pcap file.

It needs no capture privileges, because it makes up the headers: Ethernet, IPv4, TCP with its handshake, sequence
numbers and FIN, or UDP. The addresses in the capture are those of the client and of the target, as if they spoke
without a recorder between them.

  record.py out.pcap --tcp 127.0.0.1:40000 --udp 127.0.0.1:40000

listens at two ports of 127.0.0.1, prints one line for each, in the order of the options,

  tcp 127.0.0.1:41001 127.0.0.1:40000        the port of the recorder, the target
  udp 127.0.0.1:41002 127.0.0.1:40000

and runs until SIGTERM or SIGINT. With a command it runs until that ends, and has its status. {1}, {2}, ... in the
arguments of the command become the ports of the recorder:

  record.py out.pcap --tcp 127.0.0.1:40000 -- spooler_client tcp 127.0.0.1 {1}

The target @FILE is the first HOST:PORT in FILE, which is read when a connection arrives. The connection of a
notification is recorded that way: the client prints where it listens, and tells the server the recorder's port.

  record.py out.pcap --tcp 127.0.0.1:40000 --tcp @client.log -- \\
      sh -c 'spooler_client tcp 127.0.0.1 {1} --announce {2} >client.log'
"""
import argparse
import itertools
import pathlib
import re
import signal
import socket
import subprocess
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "captures"))
from packets import ACK, FIN, Connection, ethernet, ip, pcap_head, pcap_packet, udp


class Capture:
    """A pcap file. Its methods may be called from several threads."""

    def __init__(self, path):
        self.file = open(path, "wb")
        self.lock = threading.Lock()
        self.numbers = itertools.count(1)
        self.file.write(pcap_head())

    def add(self, segment):
        with self.lock:
            for packet in ip(segment, next(self.numbers) & 0xFFFF):
                self.file.write(pcap_packet(time.time_ns(), ethernet(packet)))
            self.file.flush()


class Stream:
    """One TCP connection in the capture. Its methods may be called from several threads."""

    def __init__(self, capture, client, target, disorder):
        self.capture, self.disorder = capture, disorder
        self.connection = Connection(client, target, (1000, 5000))
        self.held = {True: None, False: None}  # a segment that is written after the next one
        self.count = 0
        self.lock = threading.Lock()
        for segment in self.connection.handshake():
            capture.add(segment)

    def send(self, from_client, payload=b"", flags=ACK):
        with self.lock:
            segment = self.connection.segment(from_client, payload, flags)
            self.release(not from_client)  # a reply stays after its call
            self.count += 1
            if self.disorder and payload and not self.held[from_client] and self.count % 2 == 0:
                self.held[from_client] = segment
                return
            self.capture.add(segment)
            if self.release(from_client):
                self.capture.add(segment)  # as a retransmission

    def release(self, from_client):
        held, self.held[from_client] = self.held[from_client], None
        if held:
            self.capture.add(held)
        return held


def address(text):
    if text.startswith("@"):
        with open(text[1:], encoding="utf-8") as file:
            text = re.search(r"[\d.]+:\d+", file.read()).group()
    host, port = text.rsplit(":", 1)
    return (socket.gethostbyname(host), int(port))


def pieces(data, sizes):
    """Splits `data` into segments. `sizes` is an iterator over their lengths."""
    while data:
        size = next(sizes)
        yield data[:size]
        data = data[size:]


def pass_on(stream, from_client, source, target, sizes):
    try:
        while data := source.recv(65536):
            for piece in pieces(data, sizes):
                stream.send(from_client, piece)
                target.sendall(piece)
    except OSError:
        pass  # a peer reset its connection; the other side sees an end
    stream.send(from_client, flags=FIN | ACK)
    try:
        target.shutdown(socket.SHUT_WR)
    except OSError:
        pass


def serve_tcp(listener, options, capture, target, threads):
    while True:
        client, peer = listener.accept()
        try:
            to = address(target)
            server = socket.create_connection(to)
        except (OSError, AttributeError) as error:
            print(f"record.py: {target}: {error}", file=sys.stderr)
            client.close()
            continue
        stream = Stream(capture, peer, to, options.disorder)
        for from_client, source, sink in ((True, client, server), (False, server, client)):
            sink.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            thread = threading.Thread(target=pass_on, daemon=True,
                                      args=(stream, from_client, source, sink, itertools.cycle(options.split)))
            threads.append(thread)
            thread.start()


def serve_udp(listener, capture, target):
    sockets = {}

    def back(server, client, to):
        while True:
            try:
                data = server.recv(65536)
            except ConnectionRefusedError:
                continue  # the target is not there yet, or not any more
            capture.add(udp(to, client, data))
            listener.sendto(data, client)

    while True:
        data, client = listener.recvfrom(65536)
        to = address(target)
        if client not in sockets:
            sockets[client] = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
            sockets[client].connect(to)
            threading.Thread(target=back, args=(sockets[client], client, to), daemon=True).start()
        capture.add(udp(client, to, data))
        try:
            sockets[client].send(data)
        except ConnectionRefusedError:
            pass


class Target(argparse.Action):
    """Keeps the order of --tcp and --udp."""

    def __call__(self, parser, namespace, value, option=None):
        namespace.targets = getattr(namespace, "targets", None) or []
        namespace.targets.append((option.lstrip("-"), value))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("pcap", help="the capture that is written")
    parser.add_argument("--tcp", metavar="TARGET", action=Target, help="record connections to HOST:PORT or @FILE")
    parser.add_argument("--udp", metavar="TARGET", action=Target, help="record datagrams to HOST:PORT or @FILE")
    parser.add_argument("--split", metavar="N[,N...]", default="1448", help="the lengths of the TCP segments, used in "
                        "turn; the peers receive these pieces, too (default: 1448)")
    parser.add_argument("--disorder", action="store_true", help="write pairs of TCP segments in the wrong order, and "
                        "some of them twice; the peers receive them in order")
    parser.add_argument("--", dest="command", metavar="COMMAND", help="what to run while recording")
    words, command = sys.argv[1:], []
    if "--" in words:
        words, command = words[:words.index("--")], words[words.index("--") + 1:]
    options = parser.parse_args(words)
    if not command:
        signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGTERM, signal.SIGINT})  # for sigwait, in all threads
    options.split = [int(size) for size in options.split.split(",")]
    if min(options.split) < 1 or max(options.split) > 65495:
        parser.error("a segment has 1 to 65495 bytes")
    if not getattr(options, "targets", None):
        parser.error("--tcp or --udp is required")

    capture, threads, ports = Capture(options.pcap), [], []
    for protocol, target in options.targets:
        listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM if protocol == "tcp" else socket.SOCK_DGRAM)
        listener.bind(("127.0.0.1", 0))
        ports.append(listener.getsockname()[1])
        if protocol == "tcp":
            listener.listen(128)
            server = (serve_tcp, (listener, options, capture, target, threads))
        else:
            server = (serve_udp, (listener, capture, target))
        threading.Thread(target=server[0], args=server[1], daemon=True).start()
        # A command has standard output for itself.
        print(f"{protocol} 127.0.0.1:{ports[-1]} {target}", flush=True, file=sys.stderr if command else None)

    status = 0
    if command:
        fill = lambda argument: re.sub(r"\{(\d+)\}", lambda found: str(ports[int(found[1]) - 1]), argument)
        status = subprocess.run([fill(argument) for argument in command], check=False).returncode
    else:
        signal.sigwait({signal.SIGTERM, signal.SIGINT})
    for thread in threads if command else []:
        thread.join(5)  # until the server has closed its side, too
    capture.file.close()
    return status


if __name__ == "__main__":
    sys.exit(main())
