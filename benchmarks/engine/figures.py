#!/usr/bin/env python3
"""Measures the engine over simulated missions and, where they are at hand, real recordings.

usage: figures.py BIN WORK [--recordings FOLDER] [CASE...]

BIN holds varnenav-batch, Morvex.exe and MissionSimulator, WORK takes all files. Each line is a figure, its
limit and whether it holds. CASE chooses by the begin of a name. Figures come from `varnenav-batch compare`.
"""
import json, math, os, random, re, struct, subprocess, sys, time


class Bench:
    def __init__(self, folder, work, recordings):
        self.bin, self.work, self.recordings = folder, os.path.abspath(work), recordings
        self.wrong = 0
        os.makedirs(self.work, exist_ok=True)

    def path(self, name):
        return os.path.join(self.work, name)

    def call(self, program, *words):
        return subprocess.run([os.path.join(self.bin, program), *map(str, words)], capture_output=True, text=True)

    def simulate(self, name, *options):
        """The recording of a mission, made once for the same options."""
        target, key = self.path(name + '.tarin'), ' '.join(map(str, options))
        note = self.path(name + '.options')
        if not (os.path.exists(target) and os.path.exists(note) and open(note).read() == key):
            done = self.call('MissionSimulator', *options, '--truth-rate', 10, '--force', target)
            if done.returncode:
                sys.exit(done.stderr)
            open(note, 'w').write(key)
        return target

    def run(self, recording, name, add='gps', backward=False, rate=1, edit=None):
        """Processes the recording; the result's path, the messages and the seconds that the run took."""
        base = self.path(name)
        for end in ('.tarprj', '.xml', '-b.tarprj', '.tarout'):
            if os.path.exists(base + end):
                os.remove(base + end)
        self.call('varnenav-batch', 'create', recording, base + '.tarprj', '--add', add)
        self.call('varnenav-batch', 'parameters', base + '.tarprj', base + '.xml')
        text = open(base + '.xml', encoding='latin1').read()
        text = re.sub(r'(<outputFile[^>]*path=")[^"]*', lambda m: m.group(1) + base + '.tarout', text)
        text = re.sub(r'(<processing algorithm=")\d', r'\g<1>%d' % backward, text)
        text = re.sub(r'defaultRate="[^"]*"', 'defaultRate="%g"' % rate, text)
        open(base + '.xml', 'w', encoding='latin1').write(edit(text) if edit else text)
        made = self.call('varnenav-batch', 'create-from-parameters', base + '.xml', base + '-b.tarprj')
        if made.returncode:
            print(made.stdout, made.stderr)
        begin = time.time()
        done = self.call('varnenav-batch', 'run', base + '-b.tarprj')
        lines = [l for l in done.stdout.split('\n') if l and not l.startswith('progress')]
        open(base + '.txt', 'w').write('\n'.join(lines))
        return base + '.tarout', '\n'.join(lines), time.time() - begin

    def compare(self, result, truth, begin=None, end=None):
        """The statistics by name of difference."""
        words = ['compare', result, truth, '--json']
        for option, value in (('--from', begin), ('--to', end)):
            if value is not None:
                words += [option, value]
        done = self.call('varnenav-batch', *words)
        rows = [json.loads(line) for line in done.stdout.split('\n') if line]
        return {row['difference']: row for row in rows}

    def against_truth(self, recording, result, begin=None, end=None):
        return self.compare(result, recording[:-6] + '.truth.tarout', begin, end)

    def show(self, case, figure, limit, unit='', least=None):
        holds = figure <= limit and (least is None or figure >= least)
        self.wrong += not holds
        bounds = '%g' % limit if least is None else '%g to %g' % (least, limit)
        print('%-58s %10.4g %-4s limit %-12s %s' % (case, figure, unit, bounds, '' if holds else 'MISSED'), flush=True)

    def named(self, case, messages, pattern):
        """Whether the run names a fault."""
        holds = re.search(pattern, messages) is not None
        self.wrong += not holds
        print('%-58s %10s %-4s %-18s %s' % (case, 'named' if holds else 'silent', '', '', '' if holds else 'MISSED'), flush=True)


# Packet files.
def packets(path):
    """The head of the file, then (bytes, channel, payload) of each packet."""
    data = open(path, 'rb').read()
    i = 0
    while True:
        i = data.index(b'$$', i)
        channel, size = struct.unpack_from('<HI', data, i + 2)
        if 28 <= size <= 5000 and data[i + size - 8:i + size - 6] == b'!!':
            break
        i += 1
    yield data[:i], None, None
    while i + 28 <= len(data) and data[i:i + 2] == b'$$':
        channel, size = struct.unpack_from('<HI', data, i + 2)
        yield data[i:i + size], channel, data[i + 20:i + size - 8]
        i += size


GPS_PAYLOAD, STD_PAYLOAD = 55, 302


def seconds(payload):
    return struct.unpack_from('<q', payload)[0] * 1e-7


def copy(source, target, keep, change=None):
    """Copies the packets that `keep(channel, payload)` wants."""
    with open(target, 'wb') as out:
        for raw, channel, payload in packets(source):
            if channel is None or keep(channel, payload):
                out.write(change(raw, channel, payload) if change and channel is not None else raw)


def results(path):
    for raw, channel, payload in packets(path):
        if channel is not None and len(payload) == STD_PAYLOAD:
            yield (seconds(payload), *struct.unpack_from('<ddf', payload, 24), *struct.unpack_from('<6d', payload, 232))


def at(rows, when):
    k = 1
    while k < len(rows) - 1 and rows[k][0] < when:
        k += 1
    a, b = rows[k - 1], rows[k]
    share = min(max((when - a[0]) / (b[0] - a[0]), 0), 1)
    return [x + share * (y - x) for x, y in zip(a, b)]


def rms(values):
    return math.sqrt(sum(v * v for v in values) / len(values))


def ellipsoid(text):
    return text.replace('gpsAltitudeReference="0"', 'gpsAltitudeReference="1"')


# Cases.
def car(b):
    """Eleven outages of 15 s, cut out of a real recording."""
    source, target = os.path.join(b.recordings, 'car-rtk.tarin'), b.path('car.tarin')
    cut, first = [], []

    def keep(channel, payload):
        if len(payload) != GPS_PAYLOAD:
            return True
        when = seconds(payload)
        first or first.append(when)
        k = when - first[0] - 40
        if k < 0 or k % 45 >= 15 or k // 45 >= 11:
            return True
        cut.append((int(k // 45), when, *struct.unpack_from('<ddf', payload, 15)))
        return False

    copy(source, target, keep)
    for backward, across, up in ((True, 0.46, 0.17), (False, 7.2, None)):
        rows = list(results(b.run(target, 'car%d' % backward, backward=backward, rate=20, edit=ellipsoid)[0]))
        horizontal, vertical = [0.0] * 11, [0.0] * 11
        for k, when, latitude, longitude, altitude in cut:
            found = at(rows, when)
            north = (found[1] - latitude) * 111132
            east = (found[2] - longitude) * 111320 * math.cos(math.radians(latitude))
            horizontal[k] = max(horizontal[k], math.hypot(north, east))
            vertical[k] = max(vertical[k], abs(found[3] - altitude))
        name = 'car, outages of 15 s, ' + ('Backward' if backward else 'Standard')
        b.show(name, rms(horizontal), across, 'm')
        if up:
            b.show(name + ', vertical', rms(vertical), up, 'm')


def rest(b):
    """A real vehicle at rest: nothing moves, so every heading is to be the same."""
    source = os.path.join(b.recordings, 'vehicle-at-rest.tarin')
    heading = 90.60
    noise = random.Random(1)

    def noisy(raw, channel, payload):
        if len(payload) != GPS_PAYLOAD:
            return raw
        latitude, longitude = struct.unpack_from('<dd', payload, 15)
        moved = struct.pack('<dd', latitude + noise.gauss(0, 1) / 111132,
                            longitude + noise.gauss(0, 1) / 111320 / math.cos(math.radians(latitude)))
        return raw[:35] + moved + raw[51:]

    copy(source, b.path('rest-noise.tarin'), lambda c, p: True, noisy)
    for name, recording, limit in (('at rest', source, 0.05), ('at rest, 1 m noise', b.path('rest-noise.tarin'), 0.1)):
        rows = list(results(b.run(recording, 'rest1', backward=True, edit=ellipsoid)[0]))
        b.show(name + ', Backward, largest heading error', max(abs(r[4] - heading) for r in rows), limit, 'deg')
    first = []

    def start(channel, payload):
        if len(payload) != GPS_PAYLOAD:
            return True
        first or first.append(seconds(payload))
        return seconds(payload) <= first[0] + 300

    copy(source, b.path('rest300.tarin'), start)
    zupt = lambda t: re.sub('<initialConditions', '<zupt mode="5" from="0" to="5000"/><initialConditions', ellipsoid(t), count=1)
    rows = list(results(b.run(b.path('rest300.tarin'), 'rest300', edit=zupt)[0]))
    begin = [r for r in rows if r[0] > rows[0][0] + 250][0]
    north = (rows[-1][1] - begin[1]) * 111132
    east = (rows[-1][2] - begin[2]) * 111320 * math.cos(math.radians(begin[1]))
    b.show('at rest, ZUPT, GPS for 300 s: position at the end', math.hypot(north, east), 1, 'm')
    b.show('at rest, ZUPT, GPS for 300 s: heading at the end', abs(rows[-1][4] - heading), 0.1, 'deg')


QUIET = ('--vehicle', 'ship', '--duration', 1800, '--imu-rate', 100, '--grade', 'navigation')


def holes(b):
    """Lost, late and missing inertial packets, against the run without."""
    whole = b.simulate('quiet', *QUIET)
    plain = b.run(whole, 'quiet0', backward=True)[0]
    last = 0.0
    for name, options in (('1 % lost', ('--imu-lost', 0.01), 0.05),
                                 ('1 % late by 9 ms', ('--imu-late', 0.01), 0.002),
                                 ('all late by abs(N(0, 5 ms))', ('--imu-jitter', 0.005), 0.002),
                                 ('hole of 1 s', ('--outage', 'IMU=900:901'), 0.02),
                                 ('hole of 12 s', ('--outage', 'IMU=900:912'), 0.02)):
        target = b.simulate('quiet-x', *QUIET, *options)
        differences = b.compare(b.run(target, 'quiet1', backward=True)[0], plain)
        b.show('ship, ' + name + ': heading from undisturbed, RMS', differences['heading']['rms'], limit, 'deg')
        if 'hole' in name:
            now = differences['horizontal']['largest']
            b.show('ship, ' + name + ': no better than a shorter one', last - now, 0, 'm')
            last = now


def height(b):
    recording = b.simulate('ship-height', '--vehicle', 'ship', '--duration', 5400, '--imu-rate', 50, '--outage', 'GPS_1=1800:5400')
    none = lambda t: t
    e = b.against_truth(recording, b.run(recording, 'ship-height0', edit=none)[0], 1800)
    b.show('ship, no height aid for 1 h', abs(e['up']['largest']), 30, 'm')
    b.show('ship, no height aid for 1 h, normalised', e['up']['normalised'], 4, '')


def ship(b):
    recording = b.simulate('ship', '--vehicle', 'ship', '--duration', 3600, '--imu-rate', 50, '--gps-outage', '1500:3300')
    e = b.against_truth(recording, b.run(recording, 'ship1', backward=True)[0])
    b.show('ship, 30 min without GPS, Backward', e['horizontal']['largest'], 10, 'm')
    b.show('ship, 30 min without GPS, within 3 stated', 100 - e['horizontal']['within 3 stated [%]'], 1, '%')


AUV = ('--vehicle', 'auv', '--duration', 7200, '--imu-rate', 50, '--grade', 'navigation')


def auv(b):
    recording = b.simulate('auv', *AUV)
    for name, add, relative in (('with USBL', 'gps,dvl,depth,usbl', 0), ('without USBL', 'gps,dvl,depth', 0.002)):
        for backward in (False, True):
            e = b.against_truth(recording, b.run(recording, 'auv1', add, backward)[0], 300)
            case = 'AUV 2 h, %s, %s' % (name, 'Backward' if backward else 'Standard')
            distance = 2.0 * 6900
            if relative:
                b.show(case, e['horizontal']['largest'], relative * distance, 'm')
            else:
                b.show(case + ', RMS', e['horizontal']['rms'], 0.5, 'm')
            b.show(case + ', normalised', e['horizontal']['normalised'], 4)
    lost = b.simulate('auv-lost', *AUV, '--outage', 'DVL_BT=3600:4200')
    e = b.against_truth(lost, b.run(lost, 'auv-lost1', 'gps,dvl,depth')[0], 300)
    b.show('AUV 2 h, bottom track lost for 10 min', e['horizontal']['largest'], 0.004 * 2 * 6900, 'm')


def stated(path, begin):
    """RMS of the horizontal deviations that a result states from a time on."""
    squares = []
    for raw, channel, payload in packets(path):
        if channel is not None and len(payload) == STD_PAYLOAD and seconds(payload) >= begin:
            north, east = struct.unpack_from('<dd', payload, 176)
            squares.append(north * north + east * east)
    return math.sqrt(sum(squares) / len(squares))


FACTOR_SEEDS = (1, 2, 3)


def factor(b):
    """A sensor more: the errors fall by the factor by which the covariances of the same mission do."""
    for name, options, add, without in (
            ('AUV with LBL of three beacons', AUV[:3] + (3600,) + AUV[4:] + ('--channels', 'IMU,GPS_1,DEPTH,LBL,UTC', '--lbl-beacons', 3),
             'gps,depth,lbl', 'gps,depth'),
            ('car with odometer, outages of 60 s', ('--vehicle', 'car', '--duration', 1500, '--imu-rate', 100, '--grade', 'tactical',
              *sum((('--gps-outage', '%d:%d' % (t, t + 60)) for t in (400, 600, 800, 1000, 1200)), ())), 'gps,odometer', 'gps'),
            ('ship with EM log, 30 min without GPS', ('--vehicle', 'ship', '--duration', 3600, '--imu-rate', 50,
              '--grade', 'tactical', '--gps-outage', '1500:3300'), 'gps,emlog', 'gps')):
        errors, deviations, normalised = {}, {}, 0.0
        for seed in FACTOR_SEEDS:
            recording = b.simulate('factor', *options, '--seed', seed)
            for sensors in (add, without):
                result = b.run(recording, 'factor0', sensors)[0]
                e = b.against_truth(recording, result, 300)['horizontal']
                errors[sensors] = errors.get(sensors, 0.0) + e['rms'] ** 2
                deviations[sensors] = deviations.get(sensors, 0.0) + stated(result, 300) ** 2
                normalised += e['normalised'] / len(FACTOR_SEEDS) if sensors == add else 0.0
        better = math.sqrt(errors[without] / errors[add])
        predicted = math.sqrt(deviations[without] / deviations[add])
        count = len(FACTOR_SEEDS)
        print('%-58s %.2f m, without %.2f m' % (name, math.sqrt(errors[add] / count), math.sqrt(errors[without] / count)))
        b.show(name + ', predicted over found gain', predicted / better, 1.5)
        b.show(name + ', normalised', normalised, 1.6, least=0.4)


def wrong(b):
    """Settings that are wrong on purpose are named."""
    long = ('--vehicle', 'ship', '--duration', 3600, '--imu-rate', 50, '--alignment', 60)
    # An arm upwards shows itself by the tilt of the vehicle alone, here of 0.05 rad RMS: fixes of 0.5 m leave
    # 0.5 m / (0.05 sqrt(3600)) = 0.17 m of it after an hour, whatever the filter.
    for name, options in (('carrier phase fixes', ('--gps-mode', 'rtk')), ('fixes of 0.5 m', ())):
        arm = b.simulate('arm', *long, '--lever-arm', 'gps', '22,-6,12', *options)
        result, messages, _ = b.run(arm, 'arm1', backward=True)
        e = b.against_truth(arm, result)
        found = re.search(r'estimated lever arm (\S+), (\S+), (\S+) m \(standard deviation (\S+), (\S+), (\S+)\)', messages)
        numbers = [float(x) for x in found.groups()] if found else [math.inf] * 6
        misses = [x - y for x, y in zip(numbers, (22, -6, 12))]
        b.show('GPS arm of 26 m left at 0, %s: estimate' % name, math.sqrt(sum(m * m for m in misses)), 0.1, 'm')
        b.show('GPS arm of 26 m left at 0, %s: in deviations' % name, max(abs(m) / max(d, 0.005) for m, d in zip(misses, numbers[3:])), 3)
    b.show('GPS arm of 26 m left at 0: heading, Backward', abs(e['heading']['largest']), 0.05, 'deg')
    b.show('GPS arm of 26 m left at 0: position, Backward', e['horizontal']['rms'], 0.5, 'm')
    sign = b.simulate('arm', *long, '--lever-arm', 'gps', '22,-6,12')
    flip = lambda t: re.sub(r'(<gps>.*?<leverArm) xv1="0" xv2="0" xv3="0"', r'\1 xv1="22" xv2="6" xv3="12"', t, flags=re.S)
    b.named('wrong sign of an axis of the GPS arm', b.run(sign, 'sign0', edit=flip)[1], r'lever arm is off by')
    late = b.simulate('late', '--vehicle', 'ship', '--duration', 900, '--imu-rate', 50, '--alignment', 60, '--hidden-delay', 'GPS_1=1')
    b.named('GPS 1 s late', b.run(late, 'late0')[1], r'dated \d.*s late')
    turned = b.simulate('turned', '--vehicle', 'ship', '--duration', 900, '--imu-rate', 50, '--alignment', 60, '--dvl-heading', 180)
    b.named('DVL turned by 180 degrees', b.run(turned, 'turned0', 'gps,dvl')[1], r'mounted 1[78]\d')
    scale = b.simulate('scale', '--vehicle', 'car', '--duration', 900, '--imu-rate', 100, '--alignment', 60, '--odometer-scale', 0.1)
    b.named('odometer reads 10 % too much', b.run(scale, 'scale0', 'gps,odometer')[1], r'ODOMETER.*reads (9\.|10\.)\d* % too much')
    jam = b.simulate('jam', '--vehicle', 'auv', '--duration', 1200, '--imu-rate', 50, '--alignment', 60, '--jam', 'DVL_BT=600:900')
    result, messages, _ = b.run(jam, 'jam0', 'gps,dvl,depth')
    b.named('Doppler log jammed', messages, r'DVL_BT.*repeats')


CONSISTENT = (('ship', 'navigation', 'gps'), ('auv', 'navigation', 'gps,dvl,depth,usbl'), ('car', 'tactical', 'gps'),
              ('uav', 'mems', 'gps'))


def consistency(b):
    """Mean squared error in stated deviations over ten seeds; 1 when these are true."""
    for vehicle, grade, add in CONSISTENT:
        for backward in (False, True):
            sums = {}
            for seed in range(1, 11):
                recording = b.simulate('%s-%d' % (vehicle, seed), '--vehicle', vehicle, '--grade', grade, '--duration', 1200,
                                       '--imu-rate', 50, '--alignment', 60, '--seed', seed)
                e = b.against_truth(recording, b.run(recording, 'consistency0', add, backward)[0], 300)
                for field in ('north', 'east', 'up', 'speed-north', 'speed-east', 'heading'):
                    sums.setdefault(field, []).append(e[field]['normalised'])
            for name, fields in (('position', ('north', 'east', 'up')), ('speed', ('speed-north', 'speed-east')), ('heading', ('heading',))):
                values = [v for f in fields for v in sums[f]]
                b.show('%s, %s, %s: %s, normalised' % (vehicle, grade, 'Backward' if backward else 'Standard', name),
                       sum(values) / len(values), 1.6, least=0.6)


def heave(b):
    recording = b.simulate('heave', '--vehicle', 'ship', '--duration', 1800, '--imu-rate', 50, '--alignment', 60)
    for algorithm, limit in ((2, 0.03), (1, 0.08)):
        sea = '<heaveCalculation algorithm="1" seaState="1"><cogLeverArm xv1="0" xv2="0" xv3="0"/></heaveCalculation>'
        edit = lambda t: t if algorithm == 2 else re.sub('<heaveCalculation[^>]*/>', sea, t)
        e = b.against_truth(recording, b.run(recording, 'heave1', edit=edit, rate=5)[0], 300)
        truth = 0.38  # m, deviation of the simulated sea
        b.show('heave %d, RMS' % algorithm, e['heave']['rms'], max(limit, limit * truth), 'm')


def day(b):
    """24 h at 200 Hz, scaled from an hour."""
    options = ('--vehicle', 'auv', '--imu-rate', 200, '--channels', 'IMU,GPS_1,DVL_BT,DVL_WT,DEPTH,USBL_1,UTC')
    recording = b.simulate('hour', *options, '--duration', 3600)
    for backward, limit in ((True, 120), (False, 120)):
        _, _, took = b.run(recording, 'hour1', 'gps,dvl,depth,usbl', backward)
        b.show('24 h at 200 Hz, %s, scaled from 1 h' % ('Backward' if backward else 'Standard'), 24 * took, limit, 's')


CASES = (car, rest, holes, height, ship, auv, factor, wrong, consistency, heave, day)


def main(words):
    recordings = None
    if '--recordings' in words:
        k = words.index('--recordings')
        recordings = words[k + 1]
        words = words[:k] + words[k + 2:]
    if len(words) < 2:
        sys.exit(__doc__)
    bench = Bench(words[0], words[1], recordings)
    for case in CASES:
        if words[2:] and not any(case.__name__.startswith(w) for w in words[2:]):
            continue
        if case in (car, rest) and not recordings:
            continue
        case(bench)
    return 1 if bench.wrong else 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
