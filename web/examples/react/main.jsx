// A button that captures a signature, the ink while it is written, and then its picture.
import { useEffect, useRef, useState } from 'react';
import { createRoot } from 'react-dom/client';
import { KeyStatus, Model, SignPad } from 'mvsignpad';

const SIZE = { width: 800, height: 480 };

/** The picture's URL; nothing when the signer cancelled or the signal aborted. */
async function capture(signal, follow) {
  const pad = await SignPad.connect({ signal });
  try {
    await pad.open({ model: Model.Alder, ...SIZE });
    await pad.clear();
    for await (const { points, key } of pad.watch({ signal })) {
      follow(points);
      if (key === KeyStatus.confirm) return (await pad.encode(3)).dataURL;
      if (key === KeyStatus.cancel) return undefined;
    }
    return undefined;
  } finally {
    await pad.uninitialDevice().catch(() => undefined);
    pad.close();
  }
}

const pathOf = (points) =>
  points.map(({ x, y }, i) => `${i === 0 || points[i - 1].strokeEnd ? 'M' : 'L'}${x} ${y}`).join('');

function Signature() {
  const [points, setPoints] = useState([]);
  const [{ isSigning, picture, message }, setState] = useState({});
  const signing = useRef(null); // ends with the component
  useEffect(() => () => signing.current?.abort(), []);

  async function sign() {
    signing.current = new AbortController();
    setState({ isSigning: true });
    try {
      const url = await capture(signing.current.signal, setPoints);
      setState({ picture: url, message: url ? 'Signed.' : 'Cancelled.' });
    } catch (error) {
      setState({ message: error.message });
    }
  }

  return <>
    <button onClick={sign} disabled={isSigning}>Sign</button> <span role="status">{message}</span>
    {picture
      ? <p><img src={picture} {...SIZE} alt="The signature" /></p>
      : <p><svg viewBox="0 0 800 480" {...SIZE} fill="none" stroke="#101418" strokeWidth="3"><path d={pathOf(points)} /></svg></p>}
  </>;
}

createRoot(document.getElementById('page')).render(<Signature />);
