// JSON-RPC 2.0 over one WebSocket: numbers for requests, promises for their answers. Whoever owns
// it gives it a connection and hands it what comes.
import type { Problem } from './Shapes.js';
import { isProblem, Refusal, unreached } from './Refusal.js';

interface Waiting {
  resolve: (result: unknown) => void;
  reject: (reason: Refusal) => void;
}

interface Message {
  id?: number | null;
  method?: string;
  params?: unknown;
  result?: unknown;
  error?: { message: string; data?: unknown };
}

export class Rpc {
  private lastId = 0;
  private readonly waiting = new Map<number, Waiting>();

  constructor(
    private readonly send: (text: string) => void,
    private readonly notified: (method: string, params: unknown) => void,
  ) {}

  call(method: string, params: object = {}): Promise<unknown> {
    const id = ++this.lastId;
    return new Promise((resolve, reject) => {
      this.waiting.set(id, { resolve, reject });
      this.send(JSON.stringify({ jsonrpc: '2.0', id, method, params }));
    });
  }

  take(text: string): void {
    const message = JSON.parse(text) as Message;
    if (message.method !== undefined) {
      this.notified(message.method, message.params);
      return;
    }
    const waiting = this.waiting.get(message.id ?? 0);
    if (!waiting) return;
    this.waiting.delete(message.id ?? 0);
    if (message.error) waiting.reject(new Refusal(problemOf(message.error)));
    else waiting.resolve(message.result);
  }

  // The connection is gone: whether the hub has done what was asked is not known.
  end(detail: string): void {
    const waiting = [...this.waiting.values()];
    this.waiting.clear();
    for (const each of waiting) each.reject(unreached(detail));
  }
}

function problemOf(error: { message: string; data?: unknown }): Problem {
  if (isProblem(error.data)) return error.data;
  return { title: error.message, status: 500, detail: error.message, where: null };
}
