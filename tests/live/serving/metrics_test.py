"""The metrics of made stations are read by promtool and by Prometheus' own client library.

usage: metrics_test.py SAMPLE_SERVER PYTHON_WITH_PROMETHEUS_CLIENT
"""
import math
import os
import shutil
import subprocess
import sys
import urllib.request

SKIPPED = 77


def get(url, accept):
    with urllib.request.urlopen(urllib.request.Request(url, headers={"Accept": accept}), timeout=10) as answer:
        return answer.headers["Content-Type"], answer.read().decode()


def check_promtool(plain):
    promtool = shutil.which("promtool")
    if promtool is None:
        print("skipped: there is no promtool (Debian package prometheus)")
        sys.exit(1 if os.environ.get("ORSOLVA_NO_SKIPS") else SKIPPED)
    done = subprocess.run([promtool, "check", "metrics"], input=plain, text=True, capture_output=True)
    assert done.returncode == 0 and not done.stdout + done.stderr, done.stdout + done.stderr


def check_samples(families):
    samples = {(s.name, tuple(sorted(s.labels.items()))): s.value for f in families for s in f.samples}

    def value(name, **labels):
        return samples[(name, tuple(sorted(labels.items())))]

    assert value("orsolva_epochs_total", station="BERN") == 86395
    assert value("orsolva_stream_connected", station="GONE") == 0
    assert value("orsolva_stream_connected", station="BERN") == 1
    assert value("orsolva_satellites", station="BERN", system="G") == 9
    assert value("orsolva_rtcm_messages_total", station="BERN", type="1077") == 86400
    assert value("orsolva_alarm", station="WETZ", kind="snr_drop") == 2
    assert value("orsolva_alarm", station="WETZ", kind="latency") == 1
    assert value("orsolva_alarm", station="BERN", kind="snr_drop") == 0
    # Buckets count all that is at or below their limit.
    assert value("orsolva_latency_seconds_bucket", station="BERN", le="0.5") == 80000
    assert value("orsolva_latency_seconds_bucket", station="BERN", le="+Inf") == 86395
    assert value("orsolva_latency_seconds_count", station="BERN") == 86395
    assert math.isclose(value("orsolva_multipath_rms_meters", station="BERN", system="G", signal="1C", window="24h"),
                        0.3, rel_tol=0.1)
    # What was not measured has no sample.
    assert not any(name == "orsolva_snr_dbhz" and ("station", "NEWB") in labels for name, labels in samples)
    assert any(labels.get("station") == '</script><img src=x onerror=window.hacked=1>\ufffd"\\'
               for f in families for labels in [s.labels for s in f.samples])
    per_station = sum(("station", "BERN") in labels for _, labels in samples)
    assert per_station < 200, per_station
    assert {f.type for f in families} == {"counter", "gauge", "histogram"}
    return per_station


def check_parsers(plain, opened):
    from prometheus_client import parser as plain_parser
    from prometheus_client.openmetrics import parser as open_parser

    check_samples(list(plain_parser.text_string_to_metric_families(plain)))
    return check_samples(list(open_parser.text_string_to_metric_families(opened)))


def main():
    server, python = sys.argv[1:]
    if os.path.exists(python) and os.path.realpath(sys.prefix) != os.path.realpath(os.path.dirname(os.path.dirname(python))):
        sys.exit(subprocess.run([python, *sys.argv]).returncode)
    serving = subprocess.Popen([server], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        url = serving.stdout.readline().strip() + "metrics"
        plain_type, plain = get(url, "text/plain")
        open_type, opened = get(url, "application/openmetrics-text;version=1.0.0;q=0.9,text/plain;q=0.1")
    finally:
        serving.stdin.close()
        serving.wait(timeout=20)
    assert plain_type.startswith("text/plain; version=0.0.4") and open_type.startswith("application/openmetrics-text")
    check_promtool(plain)
    if not os.path.exists(python):
        print("read by promtool alone: tests/live/install_clients.sh installs Prometheus' own client library")
        return
    print(f"{len(plain)} bytes, {check_parsers(plain, opened)} series of a station")


if __name__ == "__main__":
    main()
