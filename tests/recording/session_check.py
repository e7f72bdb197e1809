"""What a recorded session must have in its recording."""

from tarvel_session.engine import Failure, unified
from tarvel_session.files import format_bytes, parse_bytes

from recording import capture


def recorded_call(call, result):
    """A recorded call as the scripted library's record has it."""
    null = call.flags & capture.NULL
    data = f" | {format_bytes(call.data)}" if call.data else ""
    if call.kind == "open":
        return f"OpenWiMAXDevice -> {'fail' if result.result == -1 else result.result}"
    if call.kind == "close":
        return f"CloseWiMAXDevice -> {result.result}"
    if call.kind == "register":
        null = "null " if null else ""
        return f"RegisterCallback {call.handle} {null}{call.word} -> {result.result}"
    if call.kind == "send":
        sent = "null" if null else message_text(call.data)
        return f"SendWiMAXMessage {call.handle} {call.length} {sent} -> {result.result}"
    name = "rdm" if call.kind == "read" else "wrm"
    null = " null" if null else ""
    return f"{name} 0x{call.word:08x} {call.length}{null}{data} -> {result.result}"


def message_text(data):
    kind, subtype = (int.from_bytes(half, "little") for half in (data[:2], data[2:4]))
    return f"{kind}/{subtype}" + (f" | {format_bytes(data[4:])}" if data[4:] else "")


def check_recording(client):
    """The recording has the calls that the library has, and the messages."""
    recording = capture.Capture(client.recording).check()
    ends = {event.belongs_to: event for event in recording.events}
    calls = [recorded_call(event, ends[event.number])
             for event in recording.of(*capture.CALLS) if event.number in ends]
    others = ("done ", "delivered ", "dropped ", "error ")
    expected = [line for line in client.record_lines if not line.startswith(others)]
    if client.control is not None and calls != expected:
        lines = unified(expected, calls, ("library", "recording"))
        raise Failure(f"other calls in the recording\n{lines}")
    delivered = [line.split(" ", 1)[1] for line in client.record_lines
                 if line.startswith("delivered ")]
    messages = recording.of("message")
    if client.control is not None and not 0 <= len(messages) - len(delivered) <= 1:
        raise Failure(f"{len(messages)} messages recorded, {len(delivered)} delivered")
    for text, message in zip(delivered, messages):
        data = b"" if text == "null" else parse_bytes(text)
        if (text == "null") != bool(message.flags & capture.NULL) or (
            message.data.rstrip(b"\0") != data.rstrip(b"\0")
        ):
            raise Failure(f"delivered {text}, but recorded {message}")
