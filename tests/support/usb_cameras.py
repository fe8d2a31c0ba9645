#!/usr/bin/env python3
"""Still cameras on an emulated USB bus, for programs that talk to real ones.

    umockdev-wrapper usb_cameras.py PROGRAM [ARGUMENT...]

runs a program on a bus on which cameras come and go as it says. They speak PTP over the kernel's usbfs as real
ones do, so the gphoto2 of the distribution drives them. The program says what happens in lines of JSON on the
socket whose number is in USB_CAMERAS_FD (or on standard input when it is not the program that says it), and
gets a line back for each:

    {"do": "plug", "serial": "6012345", "vendor": "NIKON", "product": "NIKON DSC Z 8", "vid": 1200, "address": 5}
    {"do": "pull", "serial": "6012345"}
    {"do": "silence", "serial": "6012345"}     it takes commands and answers none until it is reset or pulled
    {"do": "stall", "serial": "6012345"}       its next answer to a command is a stall, then the answer
    {"do": "tell", "serial": "6012345"}        {"shots": 12, "sets": 3, "iso": 200, ...}

One of vendor 0x04da (1242) is a Lumix body with its maker's operations.

Its end is the program's end, with its exit status.
"""

import glob
import json
import os
import socket
import struct
import subprocess
import sys
import threading

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import GLib, UMockdev  # noqa: E402

BUS = 1
ENOENT, EIO, EAGAIN, EBUSY, ENODEV, EINVAL, ENOTTY, ENODATA = 2, 5, 11, 16, 19, 22, 25, 61
EPIPE = 32

# usbfs, linux/usbdevice_fs.h: the numbers of the requests
SETINTERFACE, SETCONFIGURATION, GETDRIVER, SUBMITURB, DISCARDURB, REAPURB = 4, 5, 8, 10, 11, 12
REAPURBNDELAY, CLAIMINTERFACE, RELEASEINTERFACE, RESET, CLEAR_HALT, GET_CAPABILITIES = 13, 15, 16, 20, 21, 26
URB_SIZE, URB_STATUS, URB_BUFFER, URB_LENGTH, URB_ACTUAL = 56, 4, 16, 24, 28
CONTROL = 2
BULK_IN, EVENT_IN = 0x81, 0x83

# PTP, ISO 15740
COMMAND, DATA, RESPONSE, EVENT = 1, 2, 3, 4
OK, NOT_SUPPORTED = 0x2001, 0x2005
(GET_DEVICE_INFO, OPEN_SESSION, CLOSE_SESSION, GET_STORAGE_IDS, GET_STORAGE_INFO) = range(0x1001, 0x1006)
GET_OBJECT_HANDLES, GET_OBJECT_INFO, INITIATE_CAPTURE = 0x1007, 0x1008, 0x100E
GET_PROP_DESC, GET_PROP_VALUE, SET_PROP_VALUE = 0x1014, 0x1015, 0x1016
OPERATIONS = [*range(0x1001, 0x1006), GET_OBJECT_HANDLES, GET_OBJECT_INFO, INITIATE_CAPTURE, GET_PROP_DESC,
              GET_PROP_VALUE, SET_PROP_VALUE]
OBJECT_ADDED, CAPTURE_COMPLETE = 0x4002, 0x400D
# and what Lumix bodies have beside it
PANASONIC, LUMIX_SET, LUMIX_CAPTURE = 0x04DA, 0x9403, 0x9404
LUMIX_SINGLE, LUMIX_BULB_START, LUMIX_BULB_STOP = 0x03000011, 0x03000012, 0x03000013
LUMIX_PROPERTIES = {0x02000021: "lumixIso", 0x02000031: "lumixShutter", 0x02000041: "lumixAperture"}
JPEG, UNDEFINED = 0x3801, 0x3000
TYPES = {"B": 2, "h": 3, "H": 4, "I": 6}

# code: name, type, value, values to choose from; f-numbers in hundredths, times in 0.1 ms, stops in thousandths
PROPERTIES = {
    0x5001: ("battery", "B", 84, None),
    0x5007: ("fNumber", "H", 560, [400, 560, 800, 1100]),
    0x500D: ("time", "I", 40, [2, 5, 10, 20, 40, 80, 160, 500, 1000, 5000, 10000]),
    0x500E: ("program", "H", 1, [1, 2, 3, 4]),
    0x500F: ("iso", "H", 100, [100, 200, 400, 800]),
    0x5010: ("bias", "h", 0, [-1000, 0, 1000]),
}


def text(words):
    return bytes([len(words) + 1]) + (words + "\0").encode("utf-16-le") if words else b"\0"


def array(form, values):
    return struct.pack(f"<I{len(values)}{form}", len(values), *values)


def container(kind, code, transaction, payload=b""):
    return struct.pack("<IHHI", 12 + len(payload), kind, code, transaction) + payload


class Camera(UMockdev.IoctlBase):
    """One body: what it is set to, and the transfers that wait for it."""

    def set_up(self, order):
        self.vendor, self.product = order["vendor"], order["product"]
        self.serial, self.address = order["serial"], order["address"]
        self.values = {code: value for code, (_, _, value, _) in PROPERTIES.items()}
        self.shots = self.sets = self.sessions = self.bulbs = self.stalled = 0
        self.lumix = dict.fromkeys(LUMIX_PROPERTIES, 0) if order["vid"] == PANASONIC else {}
        self.stalls = False
        self.silent = self.gone = False
        self.owner = None  # of the interface
        self.forget_transfers()

    def forget_transfers(self):
        self.waiting = []  # submitted: data, endpoint, buffer, length
        self.finished = []  # and to be reaped
        self.answers = []  # to bulk reads, a transfer each
        self.events = []
        self.takes_data_of = None

    @property
    def node(self):
        return f"/dev/bus/usb/{BUS:03d}/{self.address:03d}"

    def description(self):
        """For a test bed: the device with one still image interface and its three end points."""
        device = struct.pack("<BBHBBBBHHHBBBB", 18, 1, 0x200, 0, 0, 0, 64, self.vid, 0x7777, 0x100, 1, 2, 3, 1)
        ends = b"".join(struct.pack("<BBBBHB", 7, 5, address, kind, size, wait)
                        for address, kind, size, wait in ((BULK_IN, 2, 512, 0), (2, 2, 512, 0), (EVENT_IN, 3, 8, 10)))
        interface = struct.pack("<BBBBBBBBB", 9, 4, 0, 0, 3, 6, 1, 1, 0)
        configuration = struct.pack("<BBHBBBBB", 9, 2, 9 + len(interface) + len(ends), 1, 1, 0, 0xC0, 1)
        lines = [f"P: {self.place}", f"N: bus/usb/{BUS:03d}/{self.address:03d}", f"E: DEVNAME={self.node}",
                 "E: DEVTYPE=usb_device", "E: SUBSYSTEM=usb", f"E: BUSNUM={BUS:03d}", f"E: DEVNUM={self.address:03d}",
                 f"A: busnum={BUS}", f"A: devnum={self.address}", f"A: idVendor={self.vid:04x}", "A: idProduct=7777",
                 "A: bcdDevice=0100", "A: bDeviceClass=00", "A: bConfigurationValue=1", "A: bNumConfigurations=1",
                 "A: speed=480", f"A: manufacturer={self.vendor}", f"A: product={self.product}",
                 f"A: serial={self.serial}",
                 "H: descriptors=" + (device + configuration + interface + ends).hex().upper()]
        return "\n".join(lines) + "\n"

    # --- what it says

    def operations(self):
        return OPERATIONS + ([LUMIX_SET, LUMIX_CAPTURE] if self.lumix else [])

    def take_frame(self, transaction):
        self.shots += 1
        self.events += [container(EVENT, OBJECT_ADDED, transaction, struct.pack("<I", self.shots)),
                        container(EVENT, CAPTURE_COMPLETE, transaction)]

    def perform_lumix(self, operation, transaction, parameters, data):
        """The code of the answer."""
        if operation == LUMIX_SET:
            name, size = struct.unpack("<II", data[:8])
            if name != parameters[0] or name not in self.lumix or size not in (2, 4) or len(data) != 8 + size:
                return 0x2006
            self.lumix[name] = int.from_bytes(data[8:], "little")
            self.sets += 1
        elif parameters[0] in (LUMIX_SINGLE, LUMIX_BULB_STOP):
            self.bulbs += parameters[0] == LUMIX_BULB_STOP
            self.take_frame(transaction)
        elif parameters[0] != LUMIX_BULB_START:
            return 0x201D
        return OK

    def device_info(self):
        return (struct.pack("<HIH", 100, 0, 0) + text("") + struct.pack("<H", 0) + array("H", self.operations()) +
                array("H", [OBJECT_ADDED, CAPTURE_COMPLETE]) + array("H", sorted(self.values)) + array("H", [JPEG]) +
                array("H", [JPEG, UNDEFINED]) + text(self.vendor) + text(self.product) + text("1.00") +
                text(self.serial))

    def prop_desc(self, code):
        _, form, _, choices = PROPERTIES[code]
        value = struct.pack("<" + form, self.values[code])
        head = struct.pack("<HHB", code, TYPES[form], choices is not None) + value + value
        if choices:
            return head + struct.pack(f"<BH{len(choices)}{form}", 2, len(choices), *choices)
        return head + struct.pack("<B3" + form, 1, 0, 100, 1)

    def object_info(self, handle):
        stamp = text("20260812T182900")
        return (struct.pack("<IHHIHIIIIIIIHIII", 0x10001, JPEG, 0, 1000, 0x3808, 0, 0, 0, 100, 100, 24, 0, 0, 0, 0,
                            handle) + text(f"DSC_{handle:04d}.JPG") + stamp + stamp + text(""))

    def perform(self, operation, transaction, parameters, data=b""):
        if self.silent:
            return
        payload, code = None, OK
        known = parameters and parameters[0] in self.values
        if operation == GET_DEVICE_INFO:
            payload = self.device_info()
        elif operation == GET_STORAGE_IDS:
            payload = array("I", [0x10001])
        elif operation == GET_STORAGE_INFO:
            payload = struct.pack("<HHHQQI", 3, 2, 0, 1 << 36, 1 << 35, 1000) + text(self.vendor) + text("")
        elif operation == GET_OBJECT_HANDLES:
            payload = array("I", [])
        elif operation == GET_OBJECT_INFO:
            payload = self.object_info(parameters[0])
        elif operation == GET_PROP_DESC and known:
            payload = self.prop_desc(parameters[0])
        elif operation == GET_PROP_VALUE and known:
            payload = struct.pack("<" + PROPERTIES[parameters[0]][1], self.values[parameters[0]])
        elif operation == SET_PROP_VALUE and known:
            (self.values[parameters[0]],) = struct.unpack("<" + PROPERTIES[parameters[0]][1], data)
            self.sets += 1
        elif operation == INITIATE_CAPTURE:
            self.take_frame(transaction)
        elif operation in (LUMIX_SET, LUMIX_CAPTURE) and self.lumix:
            code = self.perform_lumix(operation, transaction, parameters, data)
        elif operation in (OPEN_SESSION, CLOSE_SESSION):
            self.sessions += 1 if operation == OPEN_SESSION else -1
        else:
            code = NOT_SUPPORTED
        if payload is not None:
            self.answers.append(container(DATA, operation, transaction, payload))
        self.answers.append(container(RESPONSE, code, transaction))

    def receive(self, transfer):
        if self.takes_data_of:
            order, self.takes_data_of = self.takes_data_of, None
            return self.perform(*order, transfer[12:])
        _, _, operation, transaction = struct.unpack("<IHHI", transfer[:12])
        parameters = struct.unpack(f"<{(len(transfer) - 12) // 4}I", transfer[12:])
        if operation in (SET_PROP_VALUE, LUMIX_SET):
            self.takes_data_of = (operation, transaction, parameters)
        else:
            self.perform(operation, transaction, parameters)

    # --- usbfs

    def finish(self, data, status, length):
        data.update(URB_STATUS, struct.pack("<i", status))
        data.update(URB_ACTUAL, struct.pack("<i", length))
        self.finished.append(data)

    def serve(self):
        for urb in list(self.waiting):
            data, endpoint, buffer, length = urb
            queue = self.answers if endpoint == BULK_IN else self.events
            if not queue:
                continue
            if self.stalls and endpoint == BULK_IN:
                self.stalls, self.stalled = False, self.stalled + 1
                self.waiting.remove(urb)
                self.finish(data, -EPIPE, 0)
                continue
            piece, rest = queue[0][:length], queue[0][length:]
            queue[:1] = [rest] if rest else []
            self.waiting.remove(urb)
            buffer.update(0, piece)
            self.finish(data, 0, len(piece))

    def control(self, data, buffer):
        request_type, request, value, _, length = struct.unpack("<BBHHH", bytes(buffer.retrieve())[:8])
        answer = b""
        if request == 0x67:  # device status
            answer = struct.pack("<HH", 4, OK)
        elif request == 0x64:  # a transaction that hangs is over
            self.takes_data_of = None
        elif request == 6 and value >> 8 == 3:  # a string
            words = {1: self.vendor, 2: self.product, 3: self.serial}.get(value & 255, "").encode("utf-16-le")
            answer = bytes([len(words) + 2, 3]) + (words if value & 255 else b"\x09\x04")
        answer = answer[:length]
        if request_type & 0x80 and answer:
            buffer.update(8, answer)
        self.finish(data, 0, len(answer))

    def submit(self, argument):
        data = argument.resolve(0, URB_SIZE)
        raw = bytes(data.retrieve())
        kind, endpoint = raw[0], raw[1]
        (length,) = struct.unpack("<i", raw[URB_LENGTH:URB_LENGTH + 4])
        buffer = data.resolve(URB_BUFFER, length) if length else None
        if kind == CONTROL:
            self.control(data, buffer)
        elif endpoint & 0x80:
            self.waiting.append((data, endpoint, buffer, length))
        else:
            self.finish(data, 0, length)
            self.receive(bytes(buffer.retrieve()))
        self.serve()

    def opened_by(self):
        """How many processes have the device open. The test bed takes a client that was killed while it was
        being answered for connected ever after."""
        count = 0
        for descriptors in glob.glob("/proc/[0-9]*/fd"):
            try:
                count += any(os.readlink(file.path) == self.file for file in os.scandir(descriptors))
            except OSError:
                continue  # it has ended, or is somebody else's
        return count

    def answer(self, client, number, argument):
        """The error of a request, 0 for none."""
        if self.gone:
            return ENODEV
        if number == GET_CAPABILITIES:
            argument.resolve(0, 4).update(0, struct.pack("<I", 0))
        elif number == GETDRIVER:
            return ENODATA
        elif number == CLAIMINTERFACE:
            if self.owner and self.owner != client:
                if self.opened_by() > 1:
                    return EBUSY
                self.forget_transfers()  # of one that was killed
            self.owner = client
        elif number == RELEASEINTERFACE:
            self.owner = None
        elif number == RESET:
            self.silent = False
            self.forget_transfers()
        elif number == SUBMITURB:
            self.submit(argument)
        elif number == DISCARDURB:
            address = argument.resolve(0, URB_SIZE).client_addr
            unwanted = [urb for urb in self.waiting if urb[0].client_addr == address]
            if not unwanted:
                return EINVAL
            self.waiting.remove(unwanted[0])
            self.finish(unwanted[0][0], -ENOENT, 0)
        elif number in (REAPURB, REAPURBNDELAY):
            if not self.finished:
                return EAGAIN
            argument.resolve(0, 8).set_ptr(0, self.finished.pop(0))
        elif number not in (SETINTERFACE, SETCONFIGURATION, CLEAR_HALT):
            return ENOTTY
        return 0

    def do_handle_ioctl(self, client):
        try:
            error = self.answer(client, client.get_request() & 0xFF, client.get_arg())
        except (struct.error, GLib.Error):
            error = EIO
        client.complete(-1 if error else 0, error)
        return True


class Bus:
    def __init__(self):
        self.bed = UMockdev.Testbed.new()
        self.cameras = {}

    def plug(self, order):
        camera = Camera()
        camera.set_up(order)
        camera.vid = order["vid"]
        camera.place = f"/devices/pci0000:00/0000:00:14.0/usb{BUS}/{BUS}-{camera.address}"
        self.bed.add_from_string(camera.description())
        camera.file = self.bed.get_root_dir() + camera.node
        self.bed.attach_ioctl(camera.node, camera)
        self.bed.uevent("/sys" + camera.place, "add")
        self.cameras[order["serial"]] = camera
        return {}

    def pull(self, order):
        camera = self.cameras[order["serial"]]
        camera.gone = True
        self.bed.uevent("/sys" + camera.place, "remove")
        self.bed.remove_device("/sys" + camera.place)
        return {}

    def silence(self, order):
        self.cameras[order["serial"]].silent = True
        return {}

    def stall(self, order):
        self.cameras[order["serial"]].stalls = True
        return {}

    def tell(self, order):
        camera = self.cameras[order["serial"]]
        told = {PROPERTIES[code][0]: value for code, value in camera.values.items()}
        told |= {LUMIX_PROPERTIES[name]: value for name, value in camera.lumix.items()}
        return told | {"shots": camera.shots, "sets": camera.sets, "sessions": camera.sessions, "bulbs": camera.bulbs,
                       "stalled": camera.stalled}

    def obey(self, line):
        order = json.loads(line)
        return json.dumps({"plug": self.plug, "pull": self.pull, "silence": self.silence, "stall": self.stall,
                           "tell": self.tell}[order["do"]](order))


def main():
    bus = Bus()
    loop = GLib.MainLoop()
    ours, theirs = socket.socketpair()
    os.putenv("USB_CAMERAS_FD", str(theirs.fileno()))  # beside what the test bed has put there
    program = subprocess.Popen(sys.argv[1:], pass_fds=[theirs.fileno()])
    theirs.close()

    def serve(source, answers):
        for line in source:
            done = threading.Event()

            def work(line=line, done=done):
                answers.write(bus.obey(line) + "\n")
                answers.flush()
                done.set()

            GLib.idle_add(work)
            done.wait()

    def wait():
        program.wait()
        loop.quit()

    stream = ours.makefile("rw")
    threading.Thread(target=serve, args=(stream, stream), daemon=True).start()
    if not sys.stdin.closed:
        threading.Thread(target=serve, args=(sys.stdin, sys.stdout), daemon=True).start()
    threading.Thread(target=wait, daemon=True).start()
    loop.run()
    sys.exit(program.returncode if program.returncode >= 0 else 128 - program.returncode)


if __name__ == "__main__":
    main()
