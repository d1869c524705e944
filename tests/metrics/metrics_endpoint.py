#!/usr/bin/env python3
"""kovar --serve-metrics from outside, on loop-back: its formats as promtool reads them, clients that
misbehave, a real Prometheus scraping it and agreeing with kovar --snapshot, and SIGTERM.

Usage: metrics_endpoint.py KOVAR"""
import atexit, json, os, re, shutil, signal, socket, ssl, subprocess, sys, tempfile, threading, time, urllib.parse, urllib.request

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..'))
from script_checks import check, failures, until  # noqa: E402

KOVAR = sys.argv[1]


def get(port, path='/metrics', method='GET', accept=None, timeout=5):
    """(status, headers, body) of one request on a connection of its own."""
    request = urllib.request.Request(f'http://127.0.0.1:{port}{path}', method=method,
                                     headers={'Accept': accept} if accept else {})
    try:
        with urllib.request.urlopen(request, timeout=timeout) as reply:
            return reply.status, reply.headers, reply.read()
    except urllib.error.HTTPError as error:
        return error.code, error.headers, error.read()
    except OSError as error:
        return None, {}, str(error).encode()


def peak_rss_kib(pid):
    with open(f'/proc/{pid}/status') as status:
        return next(int(line.split()[1]) for line in status if line.startswith('VmHWM:'))


def connect(port):
    return socket.create_connection(('127.0.0.1', port), timeout=5)


def closed_by_server(sock, seconds):
    """True when the server closes sock within seconds (whatever it answered first)."""
    sock.settimeout(seconds)
    try:
        while sock.recv(65536):
            pass
        return True
    except ConnectionResetError:
        return True
    except OSError:
        return False


kovar = subprocess.Popen([KOVAR, '--serve-metrics', '127.0.0.1:0'], stdout=subprocess.PIPE, text=True)
atexit.register(lambda: kovar.poll() is None and kovar.kill())  # a check that raises leaves no server behind
line = kovar.stdout.readline()
port = int(line.rsplit(':', 1)[1].split('/')[0])
check(line.startswith('kovar: serving metrics at http://127.0.0.1:'), f'kovar says where it serves: {line.strip()}')

# The two formats, each as its reader wants it.
status, headers, text = get(port, accept='*/*')
check(status == 200 and headers['Content-Type'] == 'text/plain; version=0.0.4; charset=utf-8', 'text format by default')
lint = subprocess.run(['promtool', 'check', 'metrics'], input=text, capture_output=True)
check(lint.returncode == 0 and not lint.stdout.strip(),
      'promtool check metrics finds nothing to say: ' + (lint.stdout + lint.stderr).decode().strip())
for family in [b'kovar_cpu_seconds_total{cpu="0",mode="user"}', b'kovar_memory_available_bytes ', b'kovar_memory_bytes{class="free"}', b'kovar_processes ',
               b'kovar_disk_available_bytes ', b'kovar_battery_state{state="unknown"}', b'kovar_device_info{']:
    check(family in text, f'the text format has {family.decode()}')
machine_id = open('/etc/machine-id', 'rb').read().strip() if os.path.exists('/etc/machine-id') else b''
check(not machine_id or machine_id not in text, 'the machine id itself is never sent')
status, headers, om = get(port, accept='application/openmetrics-text;version=1.0.0,text/plain;version=0.0.4;q=0.5')
check(status == 200 and headers['Content-Type'].startswith('application/openmetrics-text; version=1.0.0')
      and om.endswith(b'\n# EOF\n') and b'# TYPE kovar_cpu_seconds counter' in om, 'OpenMetrics when asked for')
head = connect(port)  # HEAD, then GET on the same connection: a body after HEAD would come first
head.sendall(b'HEAD /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n')
time.sleep(0.2)
head.sendall(b'GET /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n')
reply = b''
while reply.count(b'\r\n\r\n') < 2 or len(reply.split(b'\r\n\r\n', 2)[2]) < length:
    reply += head.recv(65536)
    length = int(reply.split(b'Content-Length: ')[1].split(b'\r\n')[0]) if b'\r\n\r\n' in reply else 0
check(reply.split(b'\r\n\r\n')[1].startswith(b'HTTP/1.1 200 ') and len(reply.split(b'\r\n\r\n', 2)[2]) == length > 1000,
      'HEAD: the length of the GET and no body')
check(get(port, '/')[0] == 200 and b'href="/metrics"' in get(port, '/')[2], '/ links to /metrics')
check(get(port, '/metrics', method='POST')[0] == 405, 'POST is refused')
check(get(port, '/secret')[0] == 404, 'other paths are not found')

# HTTP as RFC 9112 has it, request by request on a connection of its own: the table beside this
# script gives each request, the statuses answered in order, whether the server then closed, and a
# header the first answer must carry.
def exchange(request):
    """(statuses, first answer's head, closed) for request, read until the server closes or goes quiet."""
    sock = connect(port)
    sock.sendall(request)
    sock.settimeout(0.3)
    reply, closed = b'', False
    try:
        while chunk := sock.recv(65536):
            reply += chunk
        closed = True
    except ConnectionResetError:
        closed = True
    except OSError:
        pass
    sock.close()
    statuses = re.findall(rb'(?:^|\n)HTTP/1\.[01] (\d{3}) ', reply)
    return ' '.join(s.decode() for s in statuses), reply.split(b'\r\n\r\n')[0], closed


table = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'tables', 'http-requests.tsv')
for row in open(table, encoding='utf-8').read().splitlines():
    if not row or row.startswith('#'):
        continue
    name, request, statuses, closed, header = row.split('\t')
    request = re.sub(r'<(\d+) (.)>', lambda m: m[2] * int(m[1]), request)
    request = request.encode('latin-1').decode('unicode_escape').encode('latin-1')
    answered, head, was_closed = exchange(request)
    check(answered == statuses and was_closed == (closed == 'closed') and (header == '-' or header.encode() in head),
          f'{name}: {answered or "no answer"}, {"closed" if was_closed else "open"}')

# Apache's ab, as an operator would run it: 2000 requests, 20 at a time, with and without keep-alive.
# The figures change from one scrape to the next, which ab counts as "Length" failures; the
# page at / does not, so there every request must succeed to the byte.
for path, keep_alive in [('/metrics', []), ('/metrics', ['-k']), ('/', []), ('/', ['-k'])]:
    ab = subprocess.run(['ab', '-q', '-n', '2000', '-c', '20', '-s', '10', *keep_alive, f'http://127.0.0.1:{port}{path}'],
                        capture_output=True, text=True, timeout=120)
    figures = dict(re.findall(r'^(Complete requests|Failed requests|Non-2xx responses):\s+(\d+)', ab.stdout, re.M))
    kinds = re.search(r'\(Connect: (\d+), Receive: (\d+), Length: (\d+), Exceptions: (\d+)\)', ab.stdout)
    broken = sum(int(n) for n in kinds.groups()[:2] + kinds.groups()[3:]) if kinds else 0
    length = int(kinds[3]) if kinds else 0
    check(ab.returncode == 0 and figures.get('Complete requests') == '2000' and 'Non-2xx responses' not in figures
          and broken == 0 and (path == '/metrics' or int(figures.get('Failed requests', 0)) == 0),
          f'ab -n 2000 -c 20 {" ".join(keep_alive)} {path}: {figures}, {length} of another length')

# A flood of slow clients, each sending a header line every 2 s from the same address as the
# scraper, beside a scrape every quarter second: every scrape is served.
flood_over = threading.Event()


def flood():
    slow = []
    for _ in range(200):
        try:
            slow.append(connect(port))
            slow[-1].sendall(b'GET /metrics HTTP/1.1\r\n')
        except OSError:
            pass
    while not flood_over.wait(2):
        for sock in slow:
            try:
                sock.sendall(b'X-Slow: 1\r\n')
            except OSError:
                pass
    for sock in slow:
        sock.close()


flooding = threading.Thread(target=flood, daemon=True)
flooding.start()
time.sleep(1)
scrapes = []
for _ in range(32):
    scrapes.append(get(port, timeout=5)[0])
    time.sleep(0.25)
flood_over.set()
flooding.join()
check(scrapes.count(200) == len(scrapes), f'200 slow clients beside a scraper: {scrapes.count(200)} of {len(scrapes)} scrapes served')

# Clients that misbehave. Those that hold on are started first and checked last: the endpoint must close
# them once their request is overdue; all the others must leave it serving the next scrape.
peak_before = peak_rss_kib(kovar.pid)
started = time.monotonic()
lingering = [connect(port) for _ in range(12)]  # slow clients that never finish their request
for sock in lingering:
    sock.sendall(b'GET /metr')
lingering += [connect(port) for _ in range(4)]  # and some that never say a word


def send_endlessly(sock, head, filler):
    sock.settimeout(1)
    try:
        sock.sendall(head)
        for _ in range(3200):  # 200 MiB; the endpoint stops reading long before
            sock.sendall(filler * 65536)
    except OSError:
        pass


for head, filler in [(b'POST /metrics HTTP/1.1\r\nHost: x\r\nContent-Length: 1000000000\r\n\r\n', b'b'),
                     (b'GET /metrics HTTP/1.1\r\nX-Big: ', b'a')]:
    lingering.append(connect(port))
    threading.Thread(target=send_endlessly, args=(lingering[-1], head, filler), daemon=True).start()


def crowd():
    answers = []
    threads = [threading.Thread(target=lambda: answers.append(get(port, timeout=20))) for _ in range(40)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return len(answers) == 40 and all(a[0] == 200 and a[2].startswith(b'# HELP')
                                      and int(a[1]['Content-Length']) == len(a[2]) for a in answers)


def garbage():
    sock = connect(port)
    sock.sendall(b'\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03' + os.urandom(500) + b'\r\n\r\n')
    return closed_by_server(sock, 5)


def gone_mid_response():
    for _ in range(300):
        sock = connect(port)
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b'\x01\x00\x00\x00\x00\x00\x00\x00')  # close sends RST
        sock.sendall(b'GET /metrics HTTP/1.1\r\nHost: x\r\n\r\n' * 3)
        sock.recv(10)
        sock.close()
    return True


def too_many():
    socks = [connect(port) for _ in range(150)]
    time.sleep(1)
    closed = 0
    for sock in socks:
        sock.setblocking(False)
        try:
            closed += sock.recv(1) == b''
        except BlockingIOError:
            pass
        except ConnectionResetError:
            closed += 1
        sock.close()
    return closed >= 150 - 64


for name, case in [('40 scrapers at once', crowd),
                   ('a TLS hello and noise', garbage), ('300 clients gone mid-response', gone_mid_response),
                   ('150 connections held open', too_many)]:
    outcome = case()
    after = until(lambda: (answer := get(port))[0] == 200 and answer, 3) or (None, {}, b'')  # a scraper turned away comes back at its next interval
    check(outcome and after[0] == 200 and after[2].startswith(b'# HELP'), f'{name}: handled, and the next scrape served')

# With a web configuration: HTTPS alone, for one user, and a client certificate where asked for. The
# certificates are made here by openssl, the hash by htpasswd, as an operator makes them.
data = tempfile.mkdtemp(prefix='kovar-prometheus-')


def make(*command):
    subprocess.run(command, cwd=data, check=True, capture_output=True)


make('openssl', 'req', '-x509', '-newkey', 'rsa:2048', '-nodes', '-keyout', 'server.key', '-out', 'server.crt',
     '-days', '2', '-subj', '/CN=127.0.0.1', '-addext', 'subjectAltName=IP:127.0.0.1')
make('openssl', 'req', '-x509', '-newkey', 'rsa:2048', '-nodes', '-keyout', 'ca.key', '-out', 'ca.crt', '-days', '2',
     '-subj', '/CN=kovar test CA')
make('openssl', 'req', '-newkey', 'rsa:2048', '-nodes', '-keyout', 'client.key', '-out', 'client.csr', '-subj', '/CN=scraper')
make('openssl', 'x509', '-req', '-in', 'client.csr', '-CA', 'ca.crt', '-CAkey', 'ca.key', '-CAcreateserial',
     '-out', 'client.crt', '-days', '2')
hashed = subprocess.run(['htpasswd', '-nbBC', '10', '', 'open sesame'], capture_output=True, text=True, check=True)
tls = 'tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n'
with open(f'{data}/web.yml', 'w') as web:
    web.write(tls + f'basic_auth_users:\n  alice: {hashed.stdout.strip().lstrip(":")}\n')
with open(f'{data}/mtls.yml', 'w') as web:
    web.write(tls + '  client_ca_file: ca.crt\n  client_auth_type: RequireAndVerifyClientCert\n')


def serve(config):
    server = subprocess.Popen([KOVAR, '--serve-metrics', '127.0.0.1:0', '--web-config', f'{data}/{config}'],
                              stdout=subprocess.PIPE, text=True)
    atexit.register(lambda: server.poll() is None and server.kill())
    said = server.stdout.readline()
    return server, int(said.rsplit(':', 1)[1].split('/')[0]), said


def https(port, user=None, password=None, certificate=None):
    """The status of a GET over TLS; None when no HTTP answer came."""
    context = ssl.create_default_context(cafile=f'{data}/server.crt')
    if certificate:
        context.load_cert_chain(f'{data}/{certificate}.crt', f'{data}/{certificate}.key')
    request = urllib.request.Request(f'https://127.0.0.1:{port}/metrics')
    if user:
        request.add_header('Authorization', 'Basic ' + __import__('base64').b64encode(f'{user}:{password}'.encode()).decode())
    try:
        with urllib.request.urlopen(request, timeout=5, context=context) as reply:
            return reply.status, reply.headers
    except urllib.error.HTTPError as error:
        return error.code, error.headers
    except OSError:
        return None, {}


secure, secure_port, said = serve('web.yml')
check(said.startswith('kovar: serving metrics at https://127.0.0.1:'), f'kovar says it serves HTTPS: {said.strip()}')
for name, (user, password), expected in [('alice with her password', ('alice', 'open sesame'), 200),
                                         ('no password', (None, None), 401),
                                         ('a wrong password', ('alice', 'open says me'), 401),
                                         ('a user who does not exist', ('mallory', 'open sesame'), 401)]:
    status, headers = https(secure_port, user, password)
    check(status == expected and (status == 200 or headers.get('WWW-Authenticate', '').startswith('Basic')),
          f'HTTPS with basic auth, {name}: {status}')
check(get(secure_port)[0] is None, 'plain HTTP is not served on the HTTPS port')
# A renewed configuration takes effect without a restart; a broken one leaves the last good one.
renewed = subprocess.run(['htpasswd', '-nbBC', '10', '', 'new moon'], capture_output=True, text=True, check=True)
with open(f'{data}/web.yml.new', 'w') as web:
    web.write(tls + f'basic_auth_users:\n  alice: {renewed.stdout.strip().lstrip(":")}\n')
os.rename(f'{data}/web.yml.new', f'{data}/web.yml')  # as renewals write: a new file in the old one's place
check(until(lambda: https(secure_port, 'alice', 'new moon')[0] == 200, 5)
      and https(secure_port, 'alice', 'open sesame')[0] == 401, 'a changed web configuration is read again')
with open(f'{data}/web.yml', 'w') as web:
    web.write('basic_auth_users: [\n')
secure.send_signal(signal.SIGHUP)  # and read again on SIGHUP, as a daemon is
time.sleep(1)
check(secure.poll() is None and https(secure_port, 'alice', 'new moon')[0] == 200,
      'a broken web configuration leaves the last good one in use')
mutual, mutual_port, _ = serve('mtls.yml')
for name, certificate, expected in [('a client certificate of the CA', 'client', 200),
                                    ('no client certificate', None, 403),
                                    ('a certificate the CA did not sign', 'server', 403)]:
    check(https(mutual_port, certificate=certificate)[0] == expected, f'client certificates required: {name}')
mutual.send_signal(signal.SIGTERM)
mutual.wait(10)

# A real Prometheus scrapes kovar every second; its answers agree with kovar --snapshot. It scrapes
# the HTTPS endpoint too, with the user's password, as an operator would set it up.
probe = socket.socket()
probe.bind(('127.0.0.1', 0))
prometheus_port = probe.getsockname()[1]
probe.close()
with open(f'{data}/prometheus.yml', 'w') as config:
    rules = os.path.join(os.path.dirname(os.path.abspath(__file__)), '../../resources/prometheus/kovar-rules.yml')
    config.write(f'global:\n  scrape_interval: 1s\n  scrape_timeout: 1s\nrule_files: ["{rules}"]\n'
                 'scrape_configs:\n  - job_name: kovar\n'
                 f'    static_configs:\n      - targets: ["127.0.0.1:{port}"]\n'
                 '  - job_name: kovar-tls\n    scheme: https\n'
                 f'    tls_config:\n      ca_file: {data}/server.crt\n'
                 '    basic_auth:\n      username: alice\n      password: new moon\n'
                 f'    static_configs:\n      - targets: ["127.0.0.1:{secure_port}"]\n')
prometheus = subprocess.Popen(['prometheus', f'--config.file={data}/prometheus.yml', f'--storage.tsdb.path={data}/tsdb',
                               f'--web.listen-address=127.0.0.1:{prometheus_port}', '--log.level=warn'],
                              stdout=subprocess.DEVNULL, stderr=open(f'{data}/log', 'w'))


def query(expression, at=None):
    """{labels: value} of an instant query; {} while Prometheus cannot answer."""
    parameters = {'query': expression} | ({'time': f'{at:.3f}'} if at else {})
    try:
        with urllib.request.urlopen(f'http://127.0.0.1:{prometheus_port}/api/v1/query?'
                                    + urllib.parse.urlencode(parameters), timeout=5) as reply:
            result = json.load(reply)['data']['result']
    except (OSError, ValueError, KeyError):
        return {}
    return {tuple(sorted(r['metric'].items())): float(r['value'][1]) for r in result}


try:
    up = until(lambda: list(query(f'up{{job="kovar",instance="127.0.0.1:{port}"}}').values()) == [1.0], 30)
    check(up, 'Prometheus scrapes kovar: up is 1')
    secure_up = until(lambda: list(query(f'up{{job="kovar-tls",instance="127.0.0.1:{secure_port}"}}').values()) == [1.0], 30)
    check(secure_up, 'Prometheus scrapes kovar over HTTPS with basic auth: up is 1')
    with urllib.request.urlopen(f'http://127.0.0.1:{prometheus_port}/api/v1/rules', timeout=5) as reply:
        loaded = [rule for group in json.load(reply)['data']['groups'] for rule in group['rules']]
    check(len(loaded) == 6 and all(rule['health'] != 'err' for rule in loaded),
          f'Prometheus loads the alerting rules: {[(r["name"], r["health"]) for r in loaded]}')
    until(lambda: len(query('count_over_time(kovar_memory_physical_bytes[4s])')) and
          list(query('count_over_time(kovar_memory_physical_bytes[4s])').values())[0] >= 3, 30)
    snapshot = json.loads(subprocess.run([KOVAR, '--snapshot'], capture_output=True, check=True).stdout)
    at = time.time()
    time.sleep(1.5)  # the scrape after the snapshot
    rates = [(dict(k)['cpu'], dict(k)['mode'], v) for k, v in query('rate(kovar_cpu_seconds_total{job="kovar"}[2500ms])', at).items()]
    cpus = int(next(row['Value'] for row in snapshot['systemInfo']['CPUInfo'] if row['Key'] == 'Number of Cpus'))
    per_cpu = {}
    for name, _, rate in rates:
        per_cpu[name] = per_cpu.get(name, 0) + rate
    total = sum(per_cpu.values())
    check(len(per_cpu) == cpus and abs(total - cpus) < 0.15 * cpus,
          f'CPU seconds per second, all modes: {total:.2f} over {len(per_cpu)} CPUs in Prometheus, {cpus} CPUs in the snapshot')
    check(all(abs(rate - 1) < 0.25 for rate in per_cpu.values()),
          f'each CPU spends one second per second in its modes: {per_cpu}')
    # The Summary page's classes: niced work in user, interrupts in system, iowait in idle, steal left out.
    modes = {}
    for _, mode, rate in rates:
        modes[mode] = modes.get(mode, 0) + rate
    busy = 100 * sum(modes.get(m, 0) for m in ['user', 'nice', 'system', 'irq', 'softirq']) / max(total - modes.get('steal', 0), 1e-9)
    cpu = snapshot['cpuUsage']
    check(abs(busy - cpu['usage']) < 25, f'CPU busy: {busy:.1f} % in Prometheus, {cpu["usage"]:.1f} % in the snapshot')
    with open('/proc/meminfo') as meminfo:
        available = 1024 * int(next(line.split()[1] for line in meminfo if line.startswith('MemAvailable:')))
    exported = list(query('kovar_memory_available_bytes{job="kovar"}').values())
    check(len(exported) == 1 and abs(exported[0] - available) < 0.03 * snapshot['memoryUsage']['physical'],
          f'available memory: {exported} in Prometheus, {available} in /proc/meminfo')
    memory = snapshot['memoryUsage']
    gauges = {dict(k).get('class', 'physical'): v
              for k, v in (query('kovar_memory_bytes', at) | query('kovar_memory_physical_bytes', at)).items()}
    check(gauges.get('physical') == memory['physical'], f'physical memory: {gauges.get("physical")} and {memory["physical"]}')
    for name in ['wired', 'active', 'inactive', 'free']:
        check(abs(gauges.get(name, -1e18) - memory[name]) < 0.03 * memory['physical'],
              f'{name} memory: {gauges.get(name)} in Prometheus, {memory[name]} in the snapshot')
finally:
    prometheus.send_signal(signal.SIGTERM)
    prometheus.wait(20)
    if failures:
        sys.stdout.write(open(f'{data}/log').read())
    shutil.rmtree(data, ignore_errors=True)

check(all(closed_by_server(s, max(0.1, 12 - (time.monotonic() - started))) for s in lingering),
      'silent clients, slow requests, a 1 GB body and endless headers are cut off once overdue')
growth = peak_rss_kib(kovar.pid) - peak_before
if 'libasan' in open(f'/proc/{kovar.pid}/maps').read():
    print(f'SKIP: memory flatness under AddressSanitizer, which holds freed memory back ({growth} KiB more); '
          'LeakSanitizer checks at exit instead')
else:
    check(growth < 16 * 1024, f'memory stays flat through it all: the peak grew {growth} KiB')

kovar.send_signal(signal.SIGTERM)
check(kovar.wait(10) == 0, 'SIGTERM ends kovar with status 0')
sys.exit(1 if failures else 0)
