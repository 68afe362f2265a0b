// Prints the messages of a file as an independent decoder reads them: a line of JSON for each frame.
use rtcm_rs::prelude::*;
use std::io::Write;

fn main() -> Result<(), Box<dyn std::error::Error>> {
    let path = std::env::args().nth(1).ok_or("usage: rtcm-oracle FILE")?;
    let data = std::fs::read(path)?;
    let mut out = std::io::BufWriter::new(std::io::stdout().lock());
    let mut frames = MsgFrameIter::new(data.as_slice());
    for frame in &mut frames {
        writeln!(out, "{}", serde_json::to_string(&frame.get_message())?)?;
    }
    Ok(())
}
