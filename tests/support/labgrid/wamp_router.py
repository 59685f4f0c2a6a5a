#!/usr/bin/env python3
"""A router of WAMP as small as labgrid's programs need, for tests: wamp_router.py ADDRESS PORT.

One realm for all; whoever asks is let in. Procedures are called where they were registered, events go to all who
subscribed but their publisher, and sessions that come and go are told to those who asked for that.
"""
import asyncio
import itertools
import sys

from autobahn.asyncio.websocket import WampWebSocketServerFactory
from autobahn.wamp import message, role


class Router:
    """Who is there, who registered what, who subscribed to what."""

    def __init__(self):
        self.ids = itertools.count(1)
        self.sessions = {}
        self.procedures = {}     # name -> (session, registration)
        self.registrations = {}  # registration -> name
        self.topics = {}         # name -> subscription
        self.subscribers = {}    # subscription -> sessions
        self.pending = {}        # invocation -> (caller, request)

    def publish(self, topic, args, kwargs=None, publisher=None):
        subscription = self.topics.get(topic)
        for each in list(self.subscribers.get(subscription, ())):
            if each is not publisher:
                each.send(message.Event(subscription, next(self.ids), args=args, kwargs=kwargs))

    def join(self, session):
        self.sessions[session._session_id] = session
        self.publish("wamp.session.on_join", [{"session": session._session_id, "authid": session._authid}])

    def leave(self, session):
        if self.sessions.pop(session._session_id, None) is None:
            return
        for name, (owner, registration) in list(self.procedures.items()):
            if owner is session:
                del self.procedures[name], self.registrations[registration]
        for sessions in self.subscribers.values():
            sessions.discard(session)
        for invocation, (caller, request, callee) in list(self.pending.items()):
            if callee is session:
                del self.pending[invocation]
                caller.fail(message.Call, request, "wamp.error.canceled")
        self.publish("wamp.session.on_leave", [session._session_id])


class Session:
    """One program's connection."""

    def __init__(self, router):
        self.router = router
        self.transport = None
        self._session_id = None  # named as the transport, which tells its log of it, wants it
        self._authid = None

    # What the transport calls.

    def onOpen(self, transport):
        print("a connection", flush=True)
        self.transport = transport

    def onMessage(self, told):
        kind = type(told).__name__
        print(self._session_id, self._authid, kind, getattr(told, "procedure", ""), flush=True)
        getattr(self, "on_" + kind.lower())(told)

    def onClose(self, was_clean):
        self.router.leave(self)
        self.transport = None

    # What programs ask for.

    def on_hello(self, told):
        self._session_id = next(self.router.ids)
        self._authid = told.authid
        self.send(message.Challenge("ticket"))

    def on_authenticate(self, told):
        roles = {"broker": role.RoleBrokerFeatures(publisher_identification=True),
                 "dealer": role.RoleDealerFeatures(caller_identification=True)}
        self.send(message.Welcome(self._session_id, roles, realm="realm1", authid=self._authid, authrole="public",
                                  authmethod="ticket"))
        self.router.join(self)

    def on_goodbye(self, told):
        self.send(message.Goodbye())
        self.router.leave(self)

    def on_subscribe(self, told):
        subscription = self.router.topics.setdefault(told.topic, next(self.router.ids))
        self.router.subscribers.setdefault(subscription, set()).add(self)
        self.send(message.Subscribed(told.request, subscription))

    def on_publish(self, told):
        self.router.publish(told.topic, told.args, told.kwargs, self)
        if told.acknowledge:
            self.send(message.Published(told.request, next(self.router.ids)))

    def on_register(self, told):
        if told.procedure in self.router.procedures:
            self.fail(message.Register, told.request, "wamp.error.procedure_already_exists")
            return
        registration = next(self.router.ids)
        self.router.procedures[told.procedure] = (self, registration)
        self.router.registrations[registration] = told.procedure
        self.send(message.Registered(told.request, registration))

    def on_unregister(self, told):
        self.router.procedures.pop(self.router.registrations.pop(told.registration, None), None)
        self.send(message.Unregistered(told.request))

    def on_call(self, told):
        if told.procedure == "wamp.session.kill":
            victim = self.router.sessions.get(told.args[0])
            if victim is not None:
                victim.send(message.Goodbye("wamp.close.killed"))
            self.send(message.Result(told.request))
            return
        callee, registration = self.router.procedures.get(told.procedure, (None, None))
        if callee is None:
            self.fail(message.Call, told.request, "wamp.error.no_such_procedure")
            return
        invocation = next(self.router.ids)
        self.router.pending[invocation] = (self, told.request, callee)
        callee.send(message.Invocation(invocation, registration, args=told.args, kwargs=told.kwargs,
                                       caller=self._session_id, procedure=told.procedure))

    def on_yield(self, told):
        caller, request, _ = self.router.pending.pop(told.request, (None, None, None))
        if caller is not None:
            caller.send(message.Result(request, args=told.args, kwargs=told.kwargs))

    def on_error(self, told):
        caller, request, _ = self.router.pending.pop(told.request, (None, None, None))
        if caller is not None:
            caller.fail(message.Call, request, told.error, told.args)

    # What they are told.

    def send(self, told):
        if self.transport is not None and self.transport.isOpen():
            self.transport.send(told)

    def fail(self, kind, request, error, args=None):
        self.send(message.Error(kind.MESSAGE_TYPE, request, error, args=args))


def main():
    address, port = sys.argv[1], int(sys.argv[2])
    router = Router()
    factory = WampWebSocketServerFactory(lambda: Session(router), url=f"ws://{address}:{port}")
    loop = asyncio.new_event_loop()
    asyncio.set_event_loop(loop)
    factory.loop = loop
    loop.run_until_complete(loop.create_server(factory, address, port))
    print("ready", flush=True)
    loop.run_forever()


if __name__ == "__main__":
    main()
