"""A file system that shows a folder, read-only, and lies on demand.

    lying_fs.py FOLDER MOUNT_POINT [--types LIE] [--delay MS] [--fail CALL:NAME]...

It speaks the kernel's own protocol (linux/fuse.h) on /dev/fuse: the usual library always
hands the listed type on as the entry's own, too, and so cannot tell one of them truly. Needs root. It ends when it is unmounted; its last line then tells, as JSON,
how often each call was made and how many that somebody waits for were under way at a time.
"""
import argparse
import collections
import ctypes
import errno
import json
import os
import stat
import struct
import threading
import time

THREADS = 16
REQUEST_SIZE = 1 << 20  # more than the kernel sends to a file system that takes no writes
READ_ONLY = 1  # the flag of mount(2)
VALID_SECONDS = 60  # that the kernel may keep names and attributes

NAMES = {
    1: "lookup", 2: "forget", 3: "getattr", 5: "readlink", 14: "open", 15: "read", 17: "statfs",
    18: "release", 26: "init", 27: "opendir", 28: "readdir", 29: "releasedir", 36: "interrupt",
    42: "batch_forget",
}
UNANSWERED = {"forget", "batch_forget", "interrupt"}
ASYNC_READ, PARALLEL_FOLDERS = 1 << 0, 1 << 18

REGULAR, FOLDER, LINK = stat.S_IFREG >> 12, stat.S_IFDIR >> 12, stat.S_IFLNK >> 12
UNKNOWN = 0
LIES = {  # what a listing says of an entry of this type
    "true": lambda kind: kind,
    "links-as-files": lambda kind: REGULAR if kind == LINK else kind,
    "unknown": lambda kind: UNKNOWN,
    "folders-unknown": lambda kind: UNKNOWN if kind == FOLDER else kind,
    "files": lambda kind: REGULAR,
    "folders": lambda kind: FOLDER,
}


class LyingFs:
    def __init__(self, folder, lie, delay, failures):
        self.lie, self.delay, self.failures = lie, delay, failures
        self.paths = {1: os.fsencode(folder)}  # by the number that the kernel knows them by
        self.numbers = {self.paths[1]: 1}
        self.lock = threading.Lock()
        self.calls = collections.Counter()
        self.under_way = self.most_under_way = 0
        self.device = os.open("/dev/fuse", os.O_RDWR)

    def mount(self, point):
        libc = ctypes.CDLL(None, use_errno=True)
        options = f"fd={self.device},rootmode=40755,user_id=0,group_id=0,allow_other,default_permissions"
        if libc.mount(b"lying", os.fsencode(point), b"fuse", ctypes.c_ulong(READ_ONLY), options.encode()) != 0:
            raise OSError(ctypes.get_errno(), "cannot mount", point)

    def serve(self):
        while True:
            try:
                request = os.read(self.device, REQUEST_SIZE)
            except OSError as error:
                if error.errno == errno.ENODEV:  # unmounted
                    return
                if error.errno in (errno.ENOENT, errno.EINTR, errno.EAGAIN):
                    continue
                raise
            self.answer(request)

    def answer(self, request):
        _, code, unique, number = struct.unpack_from("=IIQQ", request)
        call, body = NAMES.get(code, "other"), request[40:]
        is_waited_for = call not in UNANSWERED and not call.startswith("release")
        with self.lock:
            self.calls[call] += 1
            self.under_way += is_waited_for
            self.most_under_way = max(self.most_under_way, self.under_way)
        try:
            error, reply = 0, self.reply(call, number, body)
        except OSError as failure:
            error, reply = failure.errno, b""
        with self.lock:
            self.under_way -= is_waited_for
        if call not in UNANSWERED:
            self.write(struct.pack("=IiQ", 16 + len(reply), -error, unique) + reply)

    def write(self, answer):
        try:
            os.write(self.device, answer)
        except FileNotFoundError:
            pass  # nobody waits for it any more

    def reply(self, call, number, body):
        if call == "init":
            return struct.pack("=IIIIHHIIHHI28x", 7, 31, 1 << 20,
                               ASYNC_READ | PARALLEL_FOLDERS, THREADS, THREADS, 4096, 1, 0, 0, 0)
        if call == "other":
            raise OSError(errno.ENOSYS, call)
        if call in UNANSWERED or call.startswith("release"):
            return b""
        time.sleep(self.delay)
        path = self.paths[number]
        if call == "lookup":
            path = os.path.join(path, body.rstrip(b"\0"))
        if f"{call}:{os.fsdecode(os.path.basename(path))}" in self.failures or f"{call}:" in self.failures:
            raise OSError(errno.EIO, call)
        return getattr(self, call)(path, body)

    def number_of(self, path):
        with self.lock:
            number = self.numbers.setdefault(path, len(self.numbers) + 1)
            self.paths[number] = path
            return number

    def attributes(self, path):
        status = os.lstat(path)
        times = (status.st_atime_ns, status.st_mtime_ns, status.st_ctime_ns)
        return struct.pack("=6Q10I", self.number_of(path), status.st_size, status.st_blocks,
                           *(t // 10**9 for t in times), *(t % 10**9 for t in times), status.st_mode,
                           status.st_nlink, status.st_uid, status.st_gid, status.st_rdev, 4096, 0)

    def lookup(self, path, _):
        attributes = self.attributes(path)
        return struct.pack("=4QII", self.number_of(path), 0, VALID_SECONDS, VALID_SECONDS, 0, 0) + attributes

    def getattr(self, path, _):
        return struct.pack("=QII", VALID_SECONDS, 0, 0) + self.attributes(path)

    @staticmethod
    def readlink(path, _):
        return os.readlink(path)

    @staticmethod
    def open(path, _):
        os.stat(path)
        return struct.pack("=QII", 0, 0, 0)

    opendir = open

    @staticmethod
    def read(path, body):
        _, offset, size = struct.unpack_from("=QQI", body)
        with open(path, "rb") as file:
            file.seek(offset)
            return file.read(size)

    @staticmethod
    def statfs(_path, _body):
        return struct.pack("=5Q4I24x", 0, 0, 0, 0, 0, 4096, 255, 4096, 0)

    def readdir(self, path, body):
        _, offset, size = struct.unpack_from("=QQI", body)
        names = [b".", b"..", *os.listdir(path)]
        listing = b""
        for next_offset, name in enumerate(names[offset:], offset + 1):
            entry = os.path.join(path, name)
            kind = self.lie(os.lstat(entry).st_mode >> 12)
            record = struct.pack("=QQII", next_offset, next_offset, len(name), kind) + name
            record += bytes(-len(record) % 8)
            if len(listing) + len(record) > size:
                break
            listing += record
        return listing


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("folder")
    parser.add_argument("mount_point")
    parser.add_argument("--types", choices=LIES, default="true")
    parser.add_argument("--delay", type=float, default=0, help="of each call, in milliseconds")
    parser.add_argument("--fail", action="append", default=[], metavar="CALL:NAME",
                        help="this call fails for entries of this name; for all without a name")
    options = parser.parse_args()
    fs = LyingFs(options.folder, LIES[options.types], options.delay / 1000, set(options.fail))
    fs.mount(options.mount_point)
    print("ready", flush=True)
    threads = [threading.Thread(target=fs.serve) for _ in range(THREADS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    print(json.dumps({"calls": fs.calls, "most_under_way": fs.most_under_way}), flush=True)


if __name__ == "__main__":
    main()
