#!/usr/bin/env python3
"""Writes the storcli and sas2ircu reports of samples/two-socket-server that are too long to write by
hand. What drives controller 0 has comes from the PD LIST of storcli/c0_show.txt; everything else is
made up here, by rule, so that a second run writes the same bytes.

    scripts/make_raid_samples.py
"""

import datetime
import pathlib

SAMPLE = pathlib.Path(__file__).resolve().parent.parent / "samples" / "two-socket-server"

CLI = "007.2612.0000.0000 June 13, 2023"
SYSTEM = "Windows Server 2022"


def write(name, lines):
    path = SAMPLE / name
    path.parent.mkdir(exist_ok=True)
    path.write_bytes("".join(line + "\r\n" for line in lines).encode("ascii"))


def head(controller, description):
    return [
        f"CLI Version = {CLI}",
        f"Operating system = {SYSTEM}",
        f"Controller = {controller}",
        "Status = Success",
        f"Description = {description}",
        "",
    ]


class Drive:
    """One row of a PD LIST."""

    def __init__(self, controller, row, places):
        words = row.split()
        self.controller = controller
        self.row = row
        self.enclosure, self.slot = (int(n) for n in words[0].split(":"))
        self.device, self.state, self.group = int(words[1]), words[2], words[3]
        self.size, self.unit, self.interface, self.medium = float(words[4]), *words[5:8]
        self.sector = words[10]
        self.place = places.get(words[0], "-")
        self.model = " ".join(words[11:-2]) if row.endswith("-") else " ".join(words[11:-1])

    @property
    def path(self):
        return f"/c{self.controller}/e{self.enclosure}/s{self.slot}"

    @property
    def event_name(self):
        return f"PD {self.device:02x}(e0x{self.enclosure:02x}/s{self.slot})"


def table(lines, title):
    """The rows of the table under `title`."""
    rows = lines[lines.index(title) + 6:]
    return rows[:next(i for i, row in enumerate(rows) if row.startswith("--"))]


def read_drives(controller, lines):
    """The drives of a summary, with their places in the topology."""
    places = {}
    for row in table(lines, "TOPOLOGY :"):
        group, span, number, slot = row.split()[:4]
        if number != "-":
            places[slot] = f"DriveGroup:{group}, Span:{span}, Row:{number}"
    return [Drive(controller, row, places) for row in table(lines, "PD LIST :")]


# What a report says about a drive beyond its row in the list.
REBUILDING = "Rbld"
FAILING_SLOT = 9
FAILURE_EVENT = 0xE9D


def size_line(label, drive, extra):
    size = drive.size + extra
    unit = {"GB": 1 << 30, "TB": 1 << 40}[drive.unit]
    return f"{label} = {size:.3f} {drive.unit} [0x{int(size * unit) // 512:x} Sectors]"


def drive_details(drive, columns):
    failing = drive.controller == 0 and drive.slot == FAILING_SLOT
    rebuilding = drive.state == REBUILDING
    celsius = (24 if drive.medium == "SSD" else 31) + drive.slot % 6 + (9 if failing else 0)
    speed = "12.0Gb/s" if drive.interface == "SAS" else "6.0Gb/s"
    extra = 0.5 if drive.unit == "GB" else 0.0005
    serial = f"{'S' if drive.medium == 'SSD' else 'Z'}4K{0x2C40A1 + 0x3D7 * drive.device:08X}"
    rule = "-" * len(columns)
    lines = [f"Drive {drive.path} :"]
    lines += ["=" * (len(lines[0]) - 1), "", rule, columns, rule, drive.row, rule, ""]
    lines += [
        "EID=Enclosure Device ID|Slt=Slot No|DID=Device ID|DG=DriveGroup",
        "UGood=Unconfigured Good|UBad=Unconfigured Bad|Intf=Interface",
        "Med=Media Type|SED=Self Encryptive Drive|PI=Protection Info",
        "SeSz=Sector Size|Sp=Spun|U=Up|D=Down|T=Transition|F=Foreign",
        "",
        "",
    ]

    def section(title):
        return [title, "=" * (len(title) - 1)]

    lines += section(f"Drive {drive.path} - Detailed Information :") + [""]
    lines += section(f"Drive {drive.path} State :")
    lines += [
        "Shield Counter = 0",
        f"Media Error Count = {37 if failing else 0}",
        f"Other Error Count = {4 if failing or rebuilding else 0}",
        f"Drive Temperature =  {celsius}C ({celsius * 9 / 5 + 32:.2f} F)",
        f"Predictive Failure Count = {3 if failing else 0}",
        f"S.M.A.R.T alert flagged by drive = {'Yes' if failing else 'No'}",
        "",
        "",
    ]
    lines += section(f"Drive {drive.path} Device attributes :")
    lines += [
        f"SN = {serial}",
        "Manufacturer Id = KORVA   ",
        f"Model Number = {drive.model}",
        "NAND Vendor = NA",
        f"WWN = 5A4C2D07{0xB8140000 + 0x11 * drive.device:08X}",
        f"Firmware Revision = {'A3F2' if drive.medium == 'SSD' else 'HN07'}",
        size_line("Raw size", drive, 2 * extra),
        size_line("Coerced size", drive, 0),
        size_line("Non Coerced size", drive, extra),
        f"Device Speed = {speed}",
        f"Link Speed = {speed}",
        "NCQ setting = Enabled" if drive.interface == "SATA" else "NCQ setting = N/A",
        "Write Cache = N/A",
        f"Logical Sector Size = {drive.sector}",
        "Physical Sector Size = 4 KB",
        f"Connector Name = C{drive.slot // 8} & C{drive.slot // 8 + 1}",
        "",
        "",
    ]
    lines += section(f"Drive {drive.path} Policies/Settings :")
    lines += [
        f"Drive position = {drive.place}",
        "Enclosure position = 1",
        f"Connected Port Number = {drive.slot // 8}(path0) ",
        f"Sequence Number = {4 if rebuilding else 2}",
        "Commissioned Spare = No",
        f"Emergency Spare = {'Yes' if drive.state in ('GHS', 'DHS') else 'No'}",
        f"Last Predictive Failure Event Sequence Number = {FAILURE_EVENT if failing else 0}",
        "Successful diagnostics completion on = N/A",
        "FDE Type = None",
        "SED Capable = No",
        "SED Enabled = No",
        "Secured = No",
        "Cryptographic Erase Capable = No",
        "Locked = No",
        "Needs EKM Attention = No",
        "PI Eligible = No",
        "Certified = Yes",
        "Wide Port Capable = No",
        "Multipath = No",
        "",
        "Port Information :",
        "================",
        "",
        "-----------------------------------------",
        "Port Status Linkspeed SAS address        ",
        "-----------------------------------------",
        f"   0 Active {speed:<9} 0x5a4c2d07{0xB8140002 + 0x11 * drive.device:08x}",
        "-----------------------------------------",
        "",
        "",
        "Inquiry Data = ",
        "00 00 06 12 5b 00 10 02 4b 4f 52 56 41 20 20 20 ",
        "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ",
        "",
        "",
    ]
    return lines


def drive_report(controller, drives, columns):
    lines = head(controller, "Show Drive Information Succeeded.") + [""]
    for drive in drives:
        lines += drive_details(drive, columns)
    return lines


class EventLog:
    """Records of an event dump, numbered in turn; time passes with each."""

    def __init__(self, first, start):
        self.number, self.time, self.lines, self.uptime = first, start, [], None

    def add(self, code, description, data=("None",), severity=0, locale=0x20, after=60):
        self.lines += [f"seqNum: 0x{self.number:08x}"]
        if self.uptime is None:
            self.time += datetime.timedelta(seconds=after)
            self.lines += [f"Time: {self.time:%a %b %d %H:%M:%S %Y}"]
        else:  # The clock is not set yet.
            self.lines += [f"Seconds since last reboot: {self.uptime}"]
            self.uptime += 1
        self.lines += [
            "",
            f"Code: 0x{code:08x}",
            f"Class: {severity}",
            f"Locale: 0x{locale:02x}",
            f"Event Description: {description}",
            "Event Data:",
            "===========",
            *data,
            "",
            "",
        ]
        self.number += 1

    def boot(self, drives):
        self.uptime = 3
        self.add(0x00, "Firmware initialization started (PCI ID 10e2/1000/4031/1da1)",
                 ["PCI Vendor ID: 0x1000", "PCI Device ID: 0x10e2", "Subsystem ID: 0x4031"])
        self.add(0x01, "Firmware version 5.270.01-3927")
        self.add(0x08, "Battery Present", locale=0x08)
        self.add(0x15, "Enclosure discovery complete")
        self.uptime = None
        self.add(0x2c, f"Time established as {self.time:%m/%d/%y %H:%M:%S}; (29 seconds since power on)",
                 ["Seconds since power on: 29"], after=26)
        for drive in drives:
            self.add(0x5b, f"Inserted: {drive.event_name}", data_of(drive), locale=0x02, after=0)
        self.add(0x42, "Controller ID: 0 Boot complete", after=4)


def data_of(drive, *more):
    return [f"Device ID: {drive.device}", f"Enclosure Index: {drive.enclosure}",
            f"Slot Number: {drive.slot}", *more]


def events_of_controller_0(drives):
    log = EventLog(0xE41, datetime.datetime(2026, 10, 30, 2, 30, 11))
    failing = next(d for d in drives if d.slot == FAILING_SLOT)
    rebuilt = next(d for d in drives if d.state == REBUILDING)
    lines = head(0, "None")
    log.boot(drives)
    for week in range(3):
        log.add(0x27, "Patrol Read started", after=86400 * 5)
        for percent in range(10, 100, 10):
            log.add(0x2f, f"Patrol Read progress on VD 01/1 is {percent}.02%({percent * 41}s)",
                    [f"Progress: {percent}.02%", f"Elapsed: {percent * 41} seconds"],
                    severity=-1, locale=0x01, after=410)
            log.add(0x71, f"Unexpected sense: {failing.event_name} Path 5a4c2d07b8140167, "
                    "CDB: 8f 00 00 00 00 00 0b 1e c0 00 00 00 10 00 00 00, Sense: 3/11/00",
                    data_of(failing, "CDB Length: 16",
                            "CDB Data:",
                            "8f 00 00 00 00 00 0b 1e c0 00 00 00 10 00 00 00",
                            "Sense Length: 18",
                            "Sense Data:",
                            "70 00 03 00 00 00 00 0a 00 00 00 00 11 00 00 00 00 00"),
                    severity=0, locale=0x02, after=7)
        log.add(0x23, "Patrol Read complete", after=900)
        log.add(0x60, f"Predictive failure: {failing.event_name}", data_of(failing), severity=1,
                locale=0x02, after=3)
    for hour in range(96):
        log.add(0x98, f"Battery charging status: {min(100, 60 + hour)}%", ["None"], severity=-1,
                locale=0x08, after=3600)
    log.add(0x72, f"State change on {rebuilt.event_name} from ONLINE(18) to FAILED(11)",
            data_of(rebuilt, "Previous state: 24", "New state: 17"), severity=0, locale=0x02,
            after=5400)
    log.add(0x51, "State change on VD 02/3 from OPTIMAL(3) to DEGRADED(2)",
            ["Target Id: 3", "Previous state: 3", "New state: 2"], locale=0x01, after=0)
    log.add(0xfb, "VD 02/3 is now DEGRADED", ["Target Id: 3"], severity=2, locale=0x01, after=0)
    log.add(0x70, f"Removed: {rebuilt.event_name}", data_of(rebuilt), severity=1, locale=0x02,
            after=61)
    log.add(0x5b, f"Inserted: {rebuilt.event_name}", data_of(rebuilt), locale=0x02, after=214)
    log.add(0x6a, f"Rebuild automatically started on {rebuilt.event_name}", data_of(rebuilt),
            locale=0x02, after=2)
    for percent in range(1, 64):
        log.add(0x67, f"Rebuild progress on {rebuilt.event_name} is {percent}.00%({percent * 93}s)",
                data_of(rebuilt, f"Progress: {percent}.00%", f"Elapsed: {percent * 93} seconds"),
                severity=-1, locale=0x02, after=93)
        if percent % 3 == 0:
            log.add(0x71, f"Unexpected sense: {failing.event_name}, Sense: 1/0b/01",
                    data_of(failing), locale=0x02, after=1)
    return lines + [""] + log.lines


def events_of_controller_1(drives):
    log = EventLog(0x51, datetime.datetime(2026, 9, 28, 7, 12, 44))
    log.boot(drives)
    for _ in range(6):
        log.add(0x42, "Consistency Check done on VD 00/0", ["Target Id: 0"], locale=0x01,
                after=86400 * 7)
    return head(1, "None") + [""] + log.lines


def term_log(controller, drives):
    lines = head(controller, "None")
    lines.append(f"Firmware Term Log Information on controller {controller}:")
    clock = 3
    for drive in drives:
        lines += [
            f"T{clock}: C{controller}:iopiEvent: MPI2_EVENT_SAS_TOPOLOGY_CHANGE_LIST",
            f"T{clock}: C{controller}:DM_HandleTopologyChgEvnt: PhysicalPort=0 "
            f"NumberOfPhys=x18 NumEntries=x01 StartPhy=x{drive.slot:x}",
            f"T{clock}: C{controller}:DM_DeviceInserted: tempdevId[{0x40 + drive.device:x}], "
            f"DevHandle[{0x0a + drive.slot:x}],enclHandle 2",
            "",
        ]
        clock += 1
    for drive in drives:
        if drive.state == REBUILDING:
            lines += [f"T{clock + n}: EVT#{0xF21 + n:05d}-T{clock + n}: 103=Rebuild progress on "
                      f"{drive.event_name} is {n}.00%({n * 93}s)" for n in range(1, 64)]
    return lines


COLUMNS_1 = "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model         Sp Type"
DRIVES_1 = [
    "64:0      3 Onln   0 446.625 GB SATA SSD N   N  512B KORVA NS480M2 U  -",
    "64:1      4 Onln   0 446.625 GB SATA SSD N   N  512B KORVA NS480M2 U  -",
]


def summary_of_controller_1():
    rule = "-" * 80
    topology = "DG Arr Row EID:Slot DID Type  State BT       Size PDC  PI SED DS3  FSpace TR "
    return [
        "Generating detailed summary of the adapter, it may take a while to complete.",
        "",
        *head(1, "None"),
        "Product Name = KORVA B2 boot adapter",
        "Serial Number = KV0288B9C4",
        "SAS Address =  5a4c2d07b8500400",
        "PCI Address = 00:b3:00:00",
        "System Time = 11/18/2026 09:41:12",
        "Mfg. Date = 11/17/24",
        "Controller Time = 11/18/2026 08:41:11",
        "FW Package Build = 52.22.0-4544",
        "BIOS Version = 7.22.00.0_0x07160000",
        "FW Version = 5.220.02-3691",
        "Driver Name = megasas35.sys",
        "Driver Version = 7.726.02.00",
        "Vendor Id = 0x1000",
        "Device Id = 0x17",
        "SubVendor Id = 0x1DA1",
        "SubDevice Id = 0x4035",
        "Host Interface = PCI-E",
        "Device Interface = SATA-6G",
        "Bus Number = 179",
        "Device Number = 0",
        "Function Number = 0",
        "Domain ID = 0",
        "Drive Groups = 1",
        "",
        "TOPOLOGY :",
        "========",
        "",
        rule[:len(topology)], topology, rule[:len(topology)],
        " 0 -   -   -        -   RAID1 Optl  N  446.625 GB dflt N  N   dflt N      N  ",
        " 0 0   -   -        -   RAID1 Optl  N  446.625 GB dflt N  N   dflt N      N  ",
        " 0 0   0   64:0     3   DRIVE Onln  N  446.625 GB dflt N  N   dflt -      N  ",
        " 0 0   1   64:1     4   DRIVE Onln  N  446.625 GB dflt N  N   dflt -      N  ",
        rule[:len(topology)],
        "",
        "Virtual Drives = 1",
        "",
        "VD LIST :",
        "=======",
        "",
        "---------------------------------------------------------------",
        "DG/VD TYPE  State Access Consist Cache Cac sCC       Size Name ",
        "---------------------------------------------------------------",
        "0/0   RAID1 Optl  RW     Yes     NRWTD -   ON  446.625 GB boot ",
        "---------------------------------------------------------------",
        "",
        "Physical Drives = 2",
        "",
        "PD LIST :",
        "=======",
        "",
        "-" * len(COLUMNS_1), COLUMNS_1, "-" * len(COLUMNS_1),
        *DRIVES_1,
        "-" * len(COLUMNS_1),
        "",
    ]


def sas2_log():
    steps = [
        ("Firmware initialization started", 0, 0x20),
        ("Physical disk inserted", 0, 0x02),
        ("Physical disk inserted", 0, 0x02),
        ("Volume is optimal", 0, 0x01),
        ("Physical disk reported a predictive failure", 1, 0x02),
        ("Volume is degraded", 2, 0x01),
        ("Resync started", 0, 0x01),
        ("Resync complete", 0, 0x01),
    ]
    lines = ["SAS2IR log, adapter 0", f"Entries: {len(steps)}", ""]
    for i, (text, severity, locale) in enumerate(steps):
        lines += [
            f"Time: 0d 00:{i * 7 % 60:02d}:{i * 13 % 60:02d}.{i * 37 % 1000:03d}",
            f"LogSequence: {i + 1}",
            f"LogEntryQualifier: 0x{0x10 + i:04x}",
            f"LogEntryDescription: {text}",
            f"LogEntryValue: 0x{0x20000000 + i:08x}",
            f"vf_id: {i % 2}",
            "vp_id: 0",
            f"LogCode: 0x{0x31110000 + i:08x}",
            "LogDataDescription: Device handle",
            f"LogDataValue: 0x{9 + i:04x}",
            f"LogClass: {severity}",
            "ArgumentType: 1",
            f"Locale: 0x{locale:04x}",
            "",
        ]
    return lines


def main():
    summary = (SAMPLE / "storcli" / "c0_show.txt").read_text("ascii").splitlines()
    drives = read_drives(0, summary)
    columns = "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model             Sp Type"
    second = read_drives(1, summary_of_controller_1())
    write("storcli/c0_show_events.txt", events_of_controller_0(drives))
    write("storcli/c0_show_termlog.txt", term_log(0, drives))
    write("storcli/c0_eall_sall_show_all.txt", drive_report(0, drives, columns))
    write("storcli/c1_show.txt", summary_of_controller_1())
    write("storcli/c1_show_events.txt", events_of_controller_1(second))
    write("storcli/c1_show_termlog.txt", term_log(1, second))
    write("storcli/c1_eall_sall_show_all.txt", drive_report(1, second, COLUMNS_1))
    write("sas2ircu/logir_upload.txt", ["LSI Corporation SAS2 IR Configuration Utility.",
                                        "SAS2IRCU: Command logir Completed Successfully.",
                                        "SAS2IRCU: Utility Completed Successfully."])
    write("storcli/eventslog_convert.txt", ["279 events read, 279 events written."])
    write("sas2ircu/sas2ir_log.txt", sas2_log())


if __name__ == "__main__":
    main()
