"""A laboratory for the real application: a private ssh server, a site behind it, a desktop, and a person's hands.

Everything runs in a temporary folder and in a mount namespace of its own, so that neither the files of the account
that runs it nor the machine are touched. The demo and the system tests are both built from it.
"""
